// The first lines of a log, by which it is recognised.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "grammar/event.h"

namespace quorvel {

/// A log is recognised by what lies in its first bytes.
inline constexpr std::size_t kLogStartBytes = 64 * 1024;

/// The first lines in text that say anything, two hundred at most, without their line ends. Views into text; a last
/// line that is not whole is left out unless it is the only one.
[[nodiscard]] std::vector<std::string_view> startLines(std::string_view text);
/// Time of the first line that has one, read by the grammar that recognises the lines; kNoTime: none has. fileTime as
/// in LogStart.
[[nodiscard]] LogTime firstTimeOf(std::string_view text, std::int64_t fileTime);

}  // namespace quorvel
