// What a log tells as events for a SIEM: one JSON object a line, named as the Elastic Common Schema names things.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "report/output.h"
#include "report/scope.h"

namespace quorvel {

struct EcsOptions {
  /// Seconds since 1970 UTC of a time on a log's clock; not asked for logs that are in UTC.
  std::function<std::int64_t(LogTime)> toUtc;
  /// The line that starts at a position of a log, without its line end, 4 KiB at most; empty where it cannot be read.
  std::function<std::string(LogNumber, std::uint64_t)> lineAt;
  std::vector<std::string> paths;  ///< by log: where it lies
};

/// One event a session's start and end, an attempt to log on and a file action, log by log in the order of their lines.
Status writeEcs(const Activity& activity, const Selection& selection, const EcsOptions& options, Output& output);

/// Reads lines of logs at their positions.
class LogLines {
 public:
  /// By log: where it lies ("-" cannot be read again), and its name in the tables.
  LogLines(FileSystem& files, std::vector<std::string> paths, std::vector<std::string> names)
      : m_files(files), m_paths(std::move(paths)), m_names(std::move(names)) {}
  /// See EcsOptions::lineAt.
  [[nodiscard]] std::string at(LogNumber log, std::uint64_t position);

 private:
  void open(LogNumber log);

  FileSystem& m_files;
  std::vector<std::string> m_paths;
  std::vector<std::string> m_names;
  std::unique_ptr<File> m_file;
  std::optional<LogNumber> m_log;
  std::string m_window;
  std::uint64_t m_windowStart = 0;
};

}  // namespace quorvel
