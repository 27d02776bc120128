// The log lines of chosen sessions, in one pass over the log however many sessions are asked for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "classic/find/user_act.h"
#include "log/block_reader.h"
#include "log/file_system.h"
#include "log/log_file.h"

namespace quorvel {

/// The sessions wanted, in the order in which their lines are to come out, numbered from 0.
class SessionList {
 public:
  virtual ~SessionList() = default;
  [[nodiscard]] virtual std::size_t size() const = 0;
  /// Its Position. Asked for every session before the log is read.
  [[nodiscard]] virtual LogPosition position(std::size_t index) const = 0;
  /// Asked once for each session, in log order; valid until the next call.
  [[nodiscard]] virtual const UserAct& session(std::size_t index) = 0;
};

/// A line of the log, as far as it belongs to a session: the session's first one may begin in the middle.
struct LogLine {
  /// A longer line is never in memory as a whole.
  static constexpr LogPosition kLongestText = 256 * 1024;

  LogPosition begin = 0;
  LogPosition end = 0;    ///< of the text, without its line end
  std::string_view text;  ///< empty where the line is longer than kLongestText

  [[nodiscard]] bool isLong() const { return end - begin > kLongestText; }
};

/// Where the lines that a rule takes go: to the texts of the sessions it takes them for.
class SessionTexts {
 public:
  virtual ~SessionTexts() = default;
  /// How many sessions there are.
  [[nodiscard]] virtual std::uint32_t count() const = 0;
  /// Adds the line with a line end.
  virtual void addLine(const LogLine& line) = 0;
  virtual void add(std::string_view text) = 0;
};

/// Decides which lines of a session are taken. Sessions that share a number, and have come to the same state, are
/// treated as one: what costs time is done once for all of them.
class LineRule {
 public:
  struct Kind {
    bool foldsCase = true;        ///< session numbers and connect lines are compared without regard to case
    bool waitsForConnect = true;  ///< a session has no lines before its connect line
    bool endsAtServerStart = true;
    std::uint32_t dashMarks = 0;  ///< those of the marks that need "- " in front of the session number
  };

  explicit LineRule(const Kind& kind) : m_kind(kind) {}
  virtual ~LineRule() = default;
  [[nodiscard]] const Kind& kind() const { return m_kind; }

  /// What stands after a session number, up to 64 bytes, as a set of marks in the lower 24 bits; hasDash: "- " stands
  /// before it. Called on the reading thread.
  [[nodiscard]] virtual std::uint32_t marksOf(bool hasDash, std::string_view after) const = 0;
  /// What stands above the lines of a session.
  [[nodiscard]] virtual std::string_view header(const UserAct& session) = 0;
  /// Takes the next line with the session number: marks has those of all its places in the line. state is 0 in the
  /// first line, and then what the rule left in it. Returns false when the line is the session's last.
  virtual bool take(const LogLine& line, std::uint32_t marks, bool hasServerStart, std::uint8_t& state,
                    SessionTexts& texts) = 0;

 private:
  const Kind m_kind;
};

/// Gets the texts of the sessions, one after the other.
class SessionTextTarget {
 public:
  virtual ~SessionTextTarget() = default;
  /// The next piece of the session's text: of the same session until endSession().
  virtual void write(std::string_view piece) = 0;
  /// lines: how many of the log's it took, of those that were written.
  virtual void endSession(std::size_t index, std::uint32_t lines) = 0;
  /// Called often: for each block of the log, for each session, for each megabyte of text. position is how far the log
  /// was read. Returns false to end everything; the line and the session under way are still
  /// ended.
  virtual bool keepGoing(LogPosition position) = 0;
};

struct LineReading {
  FileSystem& files;
  /// For a temporary file that takes what memory is not meant for.
  std::filesystem::path folder;
  /// Bytes read at once. Has no influence on the texts.
  std::size_t blockSize = kDefaultBlockSize;
  /// Bytes of text kept in memory. Has no influence on the texts.
  std::size_t mostText = 16 * 1024 * 1024;
};

/// Hands the text of every session to target. A session's lines are those of the log that hold its number, from 50
/// bytes before its Position on (so that its first line is the end of an earlier one); with Position 0 or less it has
/// none. A failing read of the log ends all texts as the log's end would, and is returned, as is a failure of the
/// temporary file, which ends everything.
Status readSessionLines(const LogFile& log, SessionList& sessions, LineRule& rule, SessionTextTarget& target,
                        const LineReading& reading);

}  // namespace quorvel
