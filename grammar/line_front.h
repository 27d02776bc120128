// Reads a line from its front, piece by piece.
#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

namespace quorvel {

[[nodiscard]] inline bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// A whole number of digits only; empty for anything else, and beyond 63 bits.
[[nodiscard]] inline std::optional<std::int64_t> wholeNumber(std::string_view text) {
  std::int64_t number = 0;
  if (text.empty() || !isDigit(text.front())) return std::nullopt;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

/// Whether text may be an IPv4 or IPv6 address or a host name: nothing that could end one in a log.
[[nodiscard]] inline bool isAddress(std::string_view text) {
  if (text.empty() || text.size() > 255) return false;
  for (const char c : text) {
    const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    if (!isLetter && !isDigit(c) && c != '.' && c != ':' && c != '-' && c != '_' && c != '%') return false;
  }
  return true;
}

/// What is left of a line. Each verb takes a piece off its front, or takes nothing and says so.
class LineFront {
 public:
  explicit LineFront(std::string_view line) : m_rest(line) {}

  [[nodiscard]] std::string_view rest() const { return m_rest; }
  [[nodiscard]] bool isEmpty() const { return m_rest.empty(); }

  [[nodiscard]] bool take(std::string_view text) {
    if (!m_rest.starts_with(text)) return false;
    m_rest.remove_prefix(text.size());
    return true;
  }
  /// The text in front of the first end, which is taken too.
  [[nodiscard]] std::optional<std::string_view> takeUntil(std::string_view end) {
    const std::size_t at = m_rest.find(end);
    if (at == std::string_view::npos) return std::nullopt;
    const std::string_view text = m_rest.substr(0, at);
    m_rest.remove_prefix(at + end.size());
    return text;
  }
  /// The digits in front; may be empty.
  [[nodiscard]] std::string_view takeDigits() {
    std::size_t count = 0;
    while (count < m_rest.size() && isDigit(m_rest[count]))
      ++count;
    const std::string_view digits = m_rest.substr(0, count);
    m_rest.remove_prefix(count);
    return digits;
  }
  /// What stands in front of the first blank, which is taken too, or all; may be empty.
  [[nodiscard]] std::string_view takeWord() {
    const std::string_view word = m_rest.substr(0, m_rest.find(' '));
    m_rest.remove_prefix(word.size() == m_rest.size() ? word.size() : word.size() + 1);
    return word;
  }
  void skip(std::size_t count) { m_rest.remove_prefix(count < m_rest.size() ? count : m_rest.size()); }

 private:
  std::string_view m_rest;
};

/// What is left of a line, read from its end.
class LineEnd {
 public:
  explicit LineEnd(std::string_view line) : m_rest(line) {}

  [[nodiscard]] std::string_view rest() const { return m_rest; }
  /// The text behind the last mark, which is taken too.
  [[nodiscard]] std::optional<std::string_view> takeBehind(std::string_view mark) {
    const std::size_t at = m_rest.rfind(mark);
    if (at == std::string_view::npos) return std::nullopt;
    const std::string_view text = m_rest.substr(at + mark.size());
    m_rest.remove_suffix(m_rest.size() - at);
    return text;
  }
  [[nodiscard]] bool take(std::string_view text) {
    if (!m_rest.ends_with(text)) return false;
    m_rest.remove_suffix(text.size());
    return true;
  }

 private:
  std::string_view m_rest;
};

}  // namespace quorvel
