// A log opened for reading. The log is only ever read; its server may append to it, cut it or replace it meanwhile.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "log/file_system.h"

namespace quorvel {

/// Positions in a log are byte offsets counted from 1.
using LogPosition = std::int64_t;

/// Length of the date-and-time stamp that starts every line, e.g. "Mon 05Mar01 10:15:02".
inline constexpr int kStampLength = 20;
/// Length of a session number with its parentheses, e.g. "(000012)".
inline constexpr int kSessionNumberLength = 8;
/// Stands in the log when the server was started. Sessions still open end there.
inline constexpr std::string_view kServerStartMark = "- Starting FTP Server...";

class LogFile {
 public:
  [[nodiscard]] static Result<LogFile> open(FileSystem& files, const std::filesystem::path& path);

  [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
  /// Length in bytes when the log was opened. What is appended later is not part of it.
  [[nodiscard]] LogPosition length() const { return m_length; }

  /// Reads from position (at least 1) to fill buffer; returns the count, less only at the end of the log.
  [[nodiscard]] Result<std::size_t> readAt(LogPosition position, std::span<char> buffer) const;

 private:
  LogFile(std::unique_ptr<File> file, std::filesystem::path path, LogPosition length);

  std::unique_ptr<File> m_file;
  std::filesystem::path m_path;
  LogPosition m_length;
};

}  // namespace quorvel
