// Hashes that differ from run to run: nobody can prepare a log whose texts or numbers all fall into one place of a
// table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quorvel {

/// Chosen at random when first asked for; the same for the rest of the run.
[[nodiscard]] std::uint64_t hashSeed();

[[nodiscard]] std::uint64_t seededHash(std::uint64_t number);
[[nodiscard]] std::uint64_t seededHash(std::string_view text);

/// For the standard library's tables.
struct SeededHash {
  std::size_t operator()(std::uint64_t number) const { return static_cast<std::size_t>(seededHash(number)); }
};

}  // namespace quorvel
