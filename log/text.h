// Bytes of 8-bit text (Windows-1252): comparing without regard to case, converting, reading numbers.
// The engine never decodes log text; these helpers work on bytes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

inline constexpr std::string_view kLineEnd = "\r\n";

/// Lower case of every Windows-1252 byte; bytes that are no upper-case letter map to themselves.
extern const std::array<unsigned char, 256> kFoldTable;

[[nodiscard]] inline char foldCase(char c) {
  return static_cast<char>(kFoldTable[static_cast<unsigned char>(c)]);
}
[[nodiscard]] std::string foldCase(std::string_view text);
[[nodiscard]] std::string upperCase(std::string_view text);

/// Comparisons without regard to case.
[[nodiscard]] bool equalsFolded(std::string_view a, std::string_view b);
[[nodiscard]] bool startsWithFolded(std::string_view text, std::string_view prefix);
/// Index of the first occurrence of needle at or after from, std::string_view::npos when there is none. An empty
/// needle is found at from.
[[nodiscard]] std::size_t findFolded(std::string_view text, std::string_view needle, std::size_t from = 0);
[[nodiscard]] bool containsFolded(std::string_view text, std::string_view needle);

/// text without the blanks and tabs around it.
[[nodiscard]] std::string_view trimBlanks(std::string_view text);

/// A whole decimal number with optional sign and surrounding blanks; empty for anything else or out of range.
[[nodiscard]] std::optional<std::int64_t> parseInteger(std::string_view text);

/// label followed by blanks up to column (1-based, where the value starts), then value. A label that reaches the
/// column is followed by the value on a line of its own width: at least nothing is cut.
[[nodiscard]] std::string atColumn(std::string_view label, std::size_t column, std::string_view value);
/// The same, added to the end of text.
void appendAtColumn(std::string& text, std::string_view label, std::size_t column, std::string_view value);

/// Between Windows-1252 and UTF-8. The five unassigned bytes (81, 8D, 8F, 90, 9D) map to the code points of the same
/// value, so that every byte string survives the way there and back. toWindows1252 leaves a text that is no valid
/// UTF-8 as it is, and writes "?" for a character the code page lacks.
[[nodiscard]] std::string toUtf8(std::string_view windows1252);
[[nodiscard]] std::string toWindows1252(std::string_view utf8);

/// Whether no byte of text is above 7F.
[[nodiscard]] bool isAscii(std::string_view text);
/// Whether all of text is UTF-8.
[[nodiscard]] bool isUtf8(std::string_view text);
/// text with a replacement character for each byte that is no part of UTF-8.
[[nodiscard]] std::string validUtf8(std::string_view text);

/// Lines of any origin as UTF-8 without anything a terminal would obey: a control character that is neither a tab nor
/// part of a line end becomes "?".
[[nodiscard]] std::string terminalText(std::string_view lines);

/// A file name as 8-bit text for messages and reports.
[[nodiscard]] std::string pathText(const std::filesystem::path& path);

/// A file name as the bytes that settings and arguments hold: its own where the system's names are bytes, else UTF-8.
[[nodiscard]] std::string pathBytes(const std::filesystem::path& path);
/// The way back. Bytes that are no UTF-8 stand for Windows-1252 where the system's names are no bytes.
[[nodiscard]] std::filesystem::path pathFromBytes(std::string_view bytes);

}  // namespace quorvel
