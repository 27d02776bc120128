// What may be looked up: host names and addresses.
#pragma once

#include <cstddef>
#include <string_view>

namespace quorvel {

/// Longest host name there is, in characters.
inline constexpr std::size_t kLongestHostName = 253;

/// Whether text can be handed to the system's resolver: 1 to 253 letters, digits, '.', '-', ':' and '%', not starting
/// with '-'.
[[nodiscard]] bool isHostOrAddress(std::string_view text);

}  // namespace quorvel
