#include "log/text.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <type_traits>

namespace quorvel {
namespace {

constexpr std::array<unsigned char, 256> makeFoldTable() {
  std::array<unsigned char, 256> table{};
  for (unsigned i = 0; i < 256; ++i)
    table[i] = static_cast<unsigned char>(i);
  for (unsigned i = 'A'; i <= 'Z'; ++i)
    table[i] = static_cast<unsigned char>(i + 0x20);
  for (unsigned i = 0xC0; i <= 0xDE; ++i) {
    if (i != 0xD7) table[i] = static_cast<unsigned char>(i + 0x20);  // D7 is the multiplication sign
  }
  table[0x8A] = 0x9A;
  table[0x8C] = 0x9C;
  table[0x8E] = 0x9E;
  table[0x9F] = 0xFF;
  return table;
}

/// Code points of the bytes 80 to 9F.
constexpr std::array<char16_t, 32> kHighCodePoints = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                      0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                      0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                      0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

char32_t codePointOf(unsigned char byte) {
  return byte >= 0x80 && byte <= 0x9F ? kHighCodePoints[byte - 0x80] : byte;
}

char byteOf(char32_t codePoint) {
  if (codePoint < 0x80 || (codePoint >= 0xA0 && codePoint <= 0xFF)) return static_cast<char>(codePoint);
  const auto* const hit = std::find(kHighCodePoints.begin(), kHighCodePoints.end(), codePoint);
  return hit == kHighCodePoints.end() ? '?' : static_cast<char>(0x80 + (hit - kHighCodePoints.begin()));
}

/// Takes the next code point off text; empty when text does not start with valid UTF-8.
std::optional<char32_t> takeCodePoint(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (length > text.size() || (lead >= 0x80 && lead < 0xC2) || lead > 0xF4) return std::nullopt;
  char32_t codePoint = length == 1 ? lead : lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    if ((next & 0xC0u) != 0x80) return std::nullopt;
    codePoint = (codePoint << 6) | (next & 0x3Fu);
  }
  constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
  if (codePoint < kSmallest[length] || codePoint > 0x10FFFF) return std::nullopt;
  if (codePoint >= 0xD800 && codePoint <= 0xDFFF) return std::nullopt;  // half a pair, no character
  text.remove_prefix(length);
  return codePoint;
}

}  // namespace

const std::array<unsigned char, 256> kFoldTable = makeFoldTable();

std::string foldCase(std::string_view text) {
  std::string folded(text);
  for (char& c : folded)
    c = foldCase(c);
  return folded;
}

std::string upperCase(std::string_view text) {
  static const std::array<char, 256> kUpperTable = [] {
    std::array<char, 256> table{};
    for (std::size_t i = 0; i < 256; ++i)
      table[i] = static_cast<char>(i);
    for (std::size_t i = 0; i < 256; ++i)
      if (kFoldTable[i] != i) table[kFoldTable[i]] = static_cast<char>(i);
    return table;
  }();
  std::string upper(text);
  for (char& c : upper)
    c = kUpperTable[static_cast<unsigned char>(c)];
  return upper;
}

bool equalsFolded(std::string_view a, std::string_view b) {
  return a.size() == b.size() && startsWithFolded(a, b);
}

bool startsWithFolded(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), text.begin(),
                                                    [](char a, char b) { return foldCase(a) == foldCase(b); });
}

std::size_t findFolded(std::string_view text, std::string_view needle, std::size_t from) {
  if (from > text.size()) return std::string_view::npos;
  const auto hit = std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(), needle.begin(),
                               needle.end(), [](char a, char b) { return foldCase(a) == foldCase(b); });
  if (hit == text.end() && !needle.empty()) return std::string_view::npos;
  return static_cast<std::size_t>(hit - text.begin());
}

bool containsFolded(std::string_view text, std::string_view needle) {
  return findFolded(text, needle) != std::string_view::npos;
}

std::string_view trimBlanks(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
  text = trimBlanks(text);
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::string atColumn(std::string_view label, std::size_t column, std::string_view value) {
  std::string line;
  appendAtColumn(line, label, column, value);
  return line;
}

void appendAtColumn(std::string& text, std::string_view label, std::size_t column, std::string_view value) {
  text.append(label);
  if (label.size() + 1 < column) text.append(column - 1 - label.size(), ' ');
  text.append(value);
}

std::string toUtf8(std::string_view windows1252) {
  std::string utf8;
  utf8.reserve(windows1252.size());
  for (const char c : windows1252) {
    const char32_t codePoint = codePointOf(static_cast<unsigned char>(c));
    if (codePoint < 0x80) {
      utf8 += c;
    } else if (codePoint < 0x800) {
      utf8 += static_cast<char>(0xC0 | (codePoint >> 6));
      utf8 += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else {
      utf8 += static_cast<char>(0xE0 | (codePoint >> 12));
      utf8 += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
      utf8 += static_cast<char>(0x80 | (codePoint & 0x3F));
    }
  }
  return utf8;
}

std::string toWindows1252(std::string_view utf8) {
  std::string bytes;
  bytes.reserve(utf8.size());
  std::string_view rest = utf8;
  while (!rest.empty()) {
    const auto codePoint = takeCodePoint(rest);
    if (!codePoint) return std::string(utf8);
    bytes += byteOf(*codePoint);
  }
  return bytes;
}

bool isAscii(std::string_view text) {
  unsigned char all = 0;
  for (const char c : text)
    all |= static_cast<unsigned char>(c);
  return all < 0x80;
}

bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    std::uint64_t word = 0;
    if (text.size() >= sizeof word) {
      std::memcpy(&word, text.data(), sizeof word);
      if ((word & 0x8080808080808080u) == 0) {
        text.remove_prefix(sizeof word);
        continue;
      }
    }
    if (!takeCodePoint(text)) return false;
  }
  return true;
}

std::string validUtf8(std::string_view text) {
  if (isUtf8(text)) return std::string(text);
  std::string valid;
  while (!text.empty()) {
    const std::string_view before = text;
    if (takeCodePoint(text)) {
      valid.append(before.substr(0, before.size() - text.size()));
    } else {
      valid.append(kReplacementCharacter);
      text.remove_prefix(1);
    }
  }
  return valid;
}

std::string terminalText(std::string_view lines) {
  std::string text = isUtf8(lines) ? std::string(lines) : toUtf8(lines);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool isLineEnd = byte == '\n' || (byte == '\r' && i + 1 < text.size() && text[i + 1] == '\n');
    if ((byte < ' ' && byte != '\t' && !isLineEnd) || byte == 0x7F) text[i] = '?';
    const bool isHighControl = byte == 0xC2 && static_cast<unsigned char>(text[i + 1]) < 0xA0;  // U+0080 to U+009F
    if (isHighControl) text.replace(i, 2, "?");
  }
  return text;
}

std::string pathText(const std::filesystem::path& path) {
  return toWindows1252(pathBytes(path));
}

std::string pathBytes(const std::filesystem::path& path) {
  const auto bytes = path.u8string();  // unchanged where names are bytes
  return {bytes.begin(), bytes.end()};
}

std::filesystem::path pathFromBytes(std::string_view bytes) {
  constexpr bool kNamesAreBytes = std::is_same_v<std::filesystem::path::value_type, char>;
  const std::string name = kNamesAreBytes || isUtf8(bytes) ? std::string(bytes) : toUtf8(bytes);
  return std::u8string(name.begin(), name.end());
}

}  // namespace quorvel
