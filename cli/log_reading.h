// Reads the logs that a command names.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "activity/activity.h"
#include "log/file_system.h"

namespace quorvel {

struct LogReading {
  Activity activity;
  /// By log of the activity: the argument it came from.
  std::vector<std::string> arguments;
  bool hasFailed = false;  ///< one of the logs could not be read; tell was told
  bool isInterrupted = false;
};

/// Reads them in this order; "-" is standard input. tell takes one sentence for each that cannot be read. isInterrupted
/// is asked about every megabyte.
[[nodiscard]] LogReading readLogs(FileSystem& files, const std::vector<std::string>& logs,
                                  const std::function<void(const std::string&)>& tell,
                                  const std::function<bool()>& isInterrupted);

}  // namespace quorvel
