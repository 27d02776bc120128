// A log file read from front to back, for those who take their bytes from a LogSource.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "log/log_file.h"
#include "log/log_source.h"

namespace quorvel {

/// The log's bytes from a position on, as many as there were when it was opened. The log must outlive it.
class LogFileSource final : public LogSource {
 public:
  explicit LogFileSource(const LogFile& log, LogPosition from = 1) : m_log(log), m_next(from) {}

  [[nodiscard]] std::string name() const override {
    const auto name = m_log.path().filename().u8string();
    return {name.begin(), name.end()};
  }
  [[nodiscard]] std::uint64_t size() const override { return static_cast<std::uint64_t>(m_log.length()); }
  [[nodiscard]] Result<std::size_t> read(std::span<char> buffer) override {
    auto count = m_log.readAt(m_next, buffer);
    if (count.isOk()) m_next += static_cast<LogPosition>(count.value());
    return count;
  }

 private:
  const LogFile& m_log;
  LogPosition m_next;
};

}  // namespace quorvel
