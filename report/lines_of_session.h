// The lines of one session, read from the log again.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "activity/activity.h"
#include "log/file_system.h"

namespace quorvel {

struct LineOfSession {
  std::uint64_t position = 0;
  std::string text;  ///< UTF-8 without the line end; what stands behind PASS is "****"
};

struct LinesOfSession {
  std::vector<LineOfSession> lines;
  bool lacksFirst = false;  ///< the session began too far in front of the place asked for
  bool lacksLast = false;   ///< it went on too far behind it
};

/// How much is read and kept for one session; a session may be as long as its log.
struct LinesLimit {
  std::uint64_t bytesRead = 64 << 20;
  std::size_t lines = 5000;
};

/// Reads the lines around a position of the session; log is the one that the session began in, unpacked. Where
/// sessions are put together by rule, a line belongs that names the session's user and address, as far as it names
/// any. Comes to an end soon when isCancelled becomes true.
[[nodiscard]] Result<LinesOfSession> readLinesOfSession(const File& log, const Activity& activity, RowNumber session,
                                                        std::uint64_t position, const LinesLimit& limit,
                                                        const std::atomic<bool>& isCancelled);

}  // namespace quorvel
