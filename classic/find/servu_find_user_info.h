// The session finder: one scan of a log that finds every session and hands out its record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "log/log_file.h"
#include "log/result.h"

namespace quorvel {

struct FindOptions {
  /// Cuts user names to 12 characters in the record, so that it cannot grow over its 128 bytes. The line that logs a
  /// user on is looked for with the whole name.
  bool trunkLongUsernames = true;
  /// Bytes read at once. Has no influence on the result.
  std::size_t blockSize = 256 * 1024;
};

/// A session as the finder hands it out.
struct FoundSession {
  std::int32_t LogonNo = 0;  ///< counts from 1
  LogPosition position = 0;  ///< of the ")" behind the session number
  std::string_view record;   ///< its UserAct, as encodeRecord() makes it for slotSizeFor(the log); valid until the next
};

/// What the finder tells while it scans.
class FindObserver {
 public:
  virtual ~FindObserver() = default;
  virtual void onSession(const FoundSession& session) = 0;
  /// Called after each session, and at least once per few 100 KB of log read. Returns false to stop the scan at once.
  virtual bool keepGoing(LogPosition position) = 0;
};

enum class FindEnd {
  Finished,  ///< the whole log was scanned
  Stopped,   ///< keepGoing() said so
};

/// Finds every session of the log, in log order. An error means the log could not be read; the sessions found before
/// were handed out.
[[nodiscard]] Result<FindEnd> ServuFindUserInfo(const LogFile& log, const FindOptions& options, FindObserver& observer);

}  // namespace quorvel
