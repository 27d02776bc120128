// A log that a test holds in memory, handed out as the test says.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "log/log_source.h"

namespace quorvel::test {

class MemorySource final : public LogSource {
 public:
  explicit MemorySource(std::string text, std::string name = "test.log")
      : m_text(std::move(text)), m_name(std::move(name)) {}

  /// More is written to the log.
  void append(std::string_view text) { m_text += text; }

  [[nodiscard]] std::string name() const override { return m_name; }
  [[nodiscard]] std::uint64_t size() const override { return m_text.size(); }
  [[nodiscard]] Result<std::size_t> read(std::span<char> buffer) override {
    const std::size_t count = std::min(buffer.size(), m_text.size() - m_at);
    std::memcpy(buffer.data(), m_text.data() + m_at, count);
    m_at += count;
    return count;
  }

 private:
  std::string m_text;
  std::string m_name;
  std::size_t m_at = 0;
};

}  // namespace quorvel::test
