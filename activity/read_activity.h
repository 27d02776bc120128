// Reads logs into tables, on all cores, one log after the other.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "activity/activity.h"
#include "log/log_source.h"

namespace quorvel {

struct ReadProgress {
  std::uint64_t bytesRead = 0;
  std::uint64_t bytesInAll = 0;  ///< 0: not known
};

struct ReadOptions {
  unsigned threads = 0;  ///< that parse; 0: as many as the machine has cores
  /// More may be written to the log: a half line at its end waits, and the next read() of the same source goes on
  /// behind what was read. The source must live until then.
  bool isGrowing = false;
  /// The log is the next file of the one read before: its sessions go on.
  bool continuesSet = false;
  /// So many bytes at its beginning, whole lines, were read in another file of the set already.
  std::uint64_t repeatedBytes = 0;
  /// Called on the reading thread after each block of about a megabyte; false stops, and the tables hold what was read.
  std::function<bool(const ReadProgress&)> keepGoing{};
};

/// Reads logs one after the other into the same tables. One thread at a time; snapshot() may be called between reads
/// and from keepGoing.
class ActivityReader {
 public:
  ActivityReader();
  ~ActivityReader();

  /// Reads a log to its end, or until it is stopped. Fails where the log cannot be read, or is none that any grammar
  /// reads; what was read before stays.
  Status read(LogSource& log, const ReadOptions& options);
  /// The tables as they are now.
  [[nodiscard]] Activity snapshot();

 private:
  class Impl;
  std::unique_ptr<Impl> m_impl;
};

}  // namespace quorvel
