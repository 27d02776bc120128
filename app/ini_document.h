// Reading and changing one key in the text of a sectioned settings file. Works on text only, never on files.
//
// A section starts at a line "[name]" and ends before the next one; an entry is a line "key=value". Any other line
// (empty, starting with ";", without "=") is passed over and kept. Names are found without regard to case, and where a
// section or key stands twice the first one counts. Lines end with CR LF or LF. A UTF-8 byte order mark in front of
// the first line is passed over and kept.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

/// The value without the blanks around it and without the matching quotes (" or ') that then enclose it, if any.
/// Empty optional: no such section or key. The view is into text.
[[nodiscard]] std::optional<std::string_view> findIniValue(std::string_view text, std::string_view section,
                                                           std::string_view key);

/// text with the key's value replaced, or the key added behind the last entry of its section, or the section at the
/// end. Every other byte stays as it is. New lines end as the first line of text does, with CR LF when there is none.
/// section, key and value must be free of line breaks.
[[nodiscard]] std::string withIniValue(std::string_view text, std::string_view section, std::string_view key,
                                       std::string_view value);

}  // namespace quorvel
