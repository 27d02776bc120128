// The log lines of chosen sessions, found in one pass over the log however many sessions are asked for.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>

#include "classic/find/user_act.h"
#include "log/log_file.h"
#include "log/result.h"

namespace quorvel {

/// A line of the log that concerns a session: it contains the session number, or the server start mark, or both
/// (compared without regard to case). Everything here is valid only during the call it is handed to.
struct SessionLine {
  std::string_view text;                 ///< without its line end
  std::span<const std::size_t> numbers;  ///< where in text the session number starts, in ascending order
  bool hasServerStart = false;

  [[nodiscard]] bool hasSessionNumber() const { return !numbers.empty(); }

  /// Calls what(before, after) with the text in front of and behind each session number until it returns true;
  /// returns whether it did.
  template <typename Function>
  bool anyNumber(Function what) const {
    for (const std::size_t at : numbers) {
      if (what(text.substr(0, at), text.substr(at + kSessionNumberLength))) return true;
    }
    return false;
  }
};

/// Takes the lines of one session after the other.
class SessionLineConsumer {
 public:
  virtual ~SessionLineConsumer() = default;
  /// The lines of this session follow, in log order, from 50 bytes before its Position (so that the first line is
  /// the end of an earlier one). Returns false when no line of it is wanted; endSession() follows all the same.
  virtual bool beginSession(const UserAct& session) = 0;
  /// Returns false when no further line of this session is wanted.
  virtual bool line(const SessionLine& line) = 0;
  virtual void endSession(const UserAct& session) = 0;
  /// Called often, at least once a session and once per few 100 KB of log read. position is how far the log was handed
  /// out. Returns false to end everything: the session in progress is still ended with endSession().
  virtual bool keepGoing(std::uint64_t position) = 0;
};

/// The sessions wanted, in the order their lines are to be handed out; empty at the end.
using SessionSource = std::function<std::optional<UserAct>()>;

struct LineReading {
  /// Bytes read at once. Has no influence on the lines.
  std::size_t blockSize = 256 * 1024;
  /// Limit to what is remembered of lines ahead, two for each line. Has no influence on the lines.
  std::size_t mostMarks = 4'000'000;
};

/// Hands every session of source to consumer. Sessions with Position 0 are begun and ended without lines. The log is
/// read once for many sessions in ascending order of Position; once more wherever the order falls back, and where
/// more is to be remembered of them than memory is meant for. A failing read of the log ends the lines of the sessions
/// read together as the log's end would, and is returned.
Status readSessionLines(const LogFile& log, const SessionSource& source, SessionLineConsumer& consumer,
                        const LineReading& reading = {});

}  // namespace quorvel
