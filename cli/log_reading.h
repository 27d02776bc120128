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

/// Which files are one log.
struct LogChoice {
  std::vector<std::string> logs;  ///< as given: files, folders where isSet, "-" for standard input
  bool isSet = false;             ///< all of them together
  bool withSiblings = false;      ///< each with those beside it that rotation made of it
};

/// Reads them in this order, those of a set in the order of their first stamps; the logs of an archive are a set. tell
/// takes one sentence for each that cannot be read, and what is to be known about what was read. isInterrupted is asked
/// about every megabyte.
[[nodiscard]] LogReading readLogs(FileSystem& files, const LogChoice& choice,
                                  const std::function<void(const std::string&)>& tell,
                                  const std::function<bool()>& isInterrupted);

}  // namespace quorvel
