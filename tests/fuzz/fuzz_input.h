// What every fuzz target starts from: the input taken apart, and a check that stops the program.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

#include "tests/support/opened_log.h"

namespace quorvel::test {

/// Ends the program, as a finding, unless the condition holds.
inline void require(bool condition, std::string_view what) {
  if (condition) return;
  std::cerr << "Not true: " << what << '\n';
  std::abort();
}

/// The same for a comparison that tells what differs.
inline void requireNone(const std::string& difference) {
  require(difference.empty(), difference);
}

/// Choices are taken from the end of the input, so that what is left in front reads as the text it is about.
class FuzzInput {
 public:
  explicit FuzzInput(std::string_view bytes) : m_bytes(bytes) {}

  /// The next bytes, as many as there are, as an input of their own.
  [[nodiscard]] FuzzInput take(std::size_t count) {
    const std::size_t left = m_bytes.size() - std::min(count, m_bytes.size());
    const FuzzInput taken(m_bytes.substr(left));
    m_bytes = m_bytes.substr(0, left);
    return taken;
  }
  /// The next byte; 0 when none is left.
  [[nodiscard]] unsigned byte() {
    const std::string_view next = take(1).rest();
    return next.empty() ? 0 : static_cast<unsigned char>(next[0]);
  }
  [[nodiscard]] bool flag() { return byte() % 2 != 0; }
  [[nodiscard]] std::uint32_t number(int bytes) {
    std::uint32_t value = 0;
    for (int i = 0; i < bytes; ++i)
      value = value << 8 | byte();
    return value;
  }
  /// A text of up to longest bytes; its length is the next byte.
  [[nodiscard]] std::string text(std::size_t longest = 255) {
    const std::size_t length = std::min<std::size_t>(byte(), longest);
    return std::string(take(length).rest());
  }
  /// All that is left.
  [[nodiscard]] std::string_view rest() const { return m_bytes; }
  /// The same with each byte 1 and the byte n behind it as n x n dots: large logs from small inputs.
  [[nodiscard]] std::string expandedRest(std::size_t longest) const {
    std::string text;
    for (std::size_t i = 0; i < m_bytes.size() && text.size() < longest; ++i) {
      const bool isRun = m_bytes[i] == '\1' && i + 1 < m_bytes.size();
      const std::size_t n = isRun ? static_cast<unsigned char>(m_bytes[++i]) : 1;
      text.append(n * n, isRun ? '.' : m_bytes[i]);
    }
    return text.substr(0, longest);
  }

 private:
  std::string_view m_bytes;
};

/// What a target does with one input; each defines it.
void runTarget(FuzzInput input);

}  // namespace quorvel::test
