// Texts of unknown origin as one harmless line for a terminal.
#pragma once

#include <string>
#include <string_view>

namespace quorvel {

/// text (Windows-1252) as UTF-8 in one line: line breaks and the blanks around them become one blank, any other
/// control character becomes "?". What a terminal would obey is among the latter, so the result is only ever shown.
[[nodiscard]] std::string plainLine(std::string_view text);

}  // namespace quorvel
