// The searches a session record is made with. Each finds the first mark of a kind at or after a place in the log; the
// log is read once, however many searches are made.
//
// A search works as if it read the log in blocks of 4000 bytes from where it starts, consecutive blocks overlapping by
// the length of the text, until a block holds the text. That decides which hits a limit accepts: all that lie in the
// last block read, and a block is read when it starts at or before the limit. Bytes behind the end of the log are
// blanks.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <unordered_map>
#include <utility>

#include "classic/find/log_marks.h"
#include "classic/find/mark_lists.h"
#include "classic/find/names_in_line.h"
#include "log/log_file.h"
#include "log/log_stream.h"
#include "log/seeded_hash.h"

namespace quorvel {

/// A connect line: where the search for everything else of its session starts.
struct ConnectMark {
  MarkNumber number = 0;
  LogPosition position = 0;  ///< of the ")" behind the session number
  bool hasDash = false;      ///< "- " stands in front of the session number
};

/// What FindForwardLimited looks for. The text searched starts with the session number, the Dash texts with "- " and
/// the session number.
enum class Event {
  User,
  Quit,
  Close,
  DashClose,
  DashConnect,
  DashPasswordIncorrect,
  DashIncorrectPassword,
  DashUnauthorizedIp,
  DashNoHomeDirectory,
  Dash530,
  DashAnonymous,
};

struct SessionEnd {
  LogPosition position = 0;  ///< of the closing line's "- ", or of the server start; 0: neither was found
  bool isServerStart = false;
};

/// Searches one log from front to back. Sessions are taken in log order; the searches of a session are made before
/// the next one is taken.
class LogSearch {
 public:
  struct Options {
    std::size_t blockSize = kDefaultBlockSize;
    /// Asked whenever a block was read; false ends all searches as if the log ended there.
    std::function<bool(LogPosition readTo)> keepGoing;
  };

  LogSearch(const LogFile& log, Options options);

  /// Takes the next session: the first connect mark at or after start, which must not lie before earlier starts.
  /// False when there is none.
  [[nodiscard]] bool FindForward(LogPosition start);
  /// The session taken last, of which everything below speaks.
  [[nodiscard]] const ConnectMark& session() const { return m_session; }
  /// Its end: its closing line or the first server start behind its connect line.
  [[nodiscard]] SessionEnd FindSessionEnd();
  /// Position of the text's first byte, or 0. Searches from the session's connect mark, or as if from start.
  [[nodiscard]] LogPosition FindForwardLimited(Event event, LogPosition limit) {
    return FindForwardLimited(event, limit, m_session.position);
  }
  [[nodiscard]] LogPosition FindForwardLimited(Event event, LogPosition limit, LogPosition start) {
    return isQuietAhead() && event != Event::DashConnect ? 0 : findEvent(event, limit, start);
  }
  /// The same for the line "- ", number, " User ", name, " logged in", where name is that behind the session's first
  /// User mark and has this many bytes.
  [[nodiscard]] LogPosition FindLogonLine(std::size_t nameLength, LogPosition limit);

  /// The log's text, see BlockWindow.
  [[nodiscard]] BlockWindow& window() { return m_stream.window(); }
  [[nodiscard]] bool wasStopped() const { return m_wasStopped; }
  /// What kept the log from being read.
  [[nodiscard]] const Status& status() const { return m_stream.status(); }

 private:
  /// Takes the marks of a block; false when nothing more shall be read.
  bool takeMarks(const LogBlock& block);
  void readTo(LogPosition position);
  [[nodiscard]] LogPosition lastAccepted(LogPosition start, LogPosition limit, std::size_t textLength) const;
  /// The names of one number that hold " logged in" and are alike up to there.
  struct LongNames {
    std::uint64_t counts = 0;  ///< how often they hold it: one bit each, the last one for that often and more
    MarkNumber last = 0;       ///< the last User mark of theirs

    [[nodiscard]] static std::uint64_t bitOf(std::size_t count) {
      return std::uint64_t{1} << std::min<std::size_t>(count, 63);
    }
  };
  [[nodiscard]] static std::uint64_t logonKey(SessionId id, std::uint64_t nameHash) {
    return nameHash ^ (id * 0x9E3779B97F4A7C15);
  }
  void expectLogon(MarkNumber user, const LogMark& mark, const char* name, NamesInLine& names);
  void takeLogon(const LogMark& mark, const char* name, NamesInLine& names);
  void answerLogon(std::uint64_t key, LogPosition position);
  [[nodiscard]] LogPosition findEvent(Event event, LogPosition limit, LogPosition start);
  /// Whether the rest of the log is known to have connect marks and server starts only.
  [[nodiscard]] bool isQuietAhead() const { return m_lastEvent <= m_session.position && m_stream.isAtEnd(); }
  [[nodiscard]] bool isAhead(unsigned kinds) const;
  /// The first mark of the session that has one of the kinds (a bit for each MarkKind) and lies at or before furthest;
  /// 0 when there is none yet.
  [[nodiscard]] MarkNumber firstOf(unsigned kinds, LogPosition furthest);
  void notePassed(unsigned kinds, MarkNumber passed);
  [[nodiscard]] SessionId sessionId();

  const LogFile& m_log;
  const Options m_options;
  LogStream m_stream;
  MarkLists m_marks;
  /// How far the marks of a number were walked without a hit, where that was far: sessions that share a number, or
  /// blocks still to be read, must not make the program walk it again.
  std::map<std::pair<SessionId, unsigned>, MarkNumber> m_passed;
  std::size_t m_purgePassedAt = 4096;
  /// For each number and name the last User mark whose logon line was not seen yet; its detail is the one before it.
  /// Once the line was seen, the detail of them all is its position.
  std::unordered_map<std::uint64_t, MarkNumber, SeededHash> m_expected;
  std::unordered_map<std::uint64_t, LongNames, SeededHash> m_longNames;
  std::size_t m_purgeExpectedAt = 1024;
  std::array<LogPosition, kMarkKinds> m_lastOfKind{};  ///< how far each kind of mark was seen
  LogPosition m_lastEvent = 0;                         ///< the same for all kinds but connect marks
  std::deque<LogPosition> m_serverStarts;              ///< from the current session on
  ConnectMark m_session;                               ///< taken last
  bool m_wasStopped = false;
};

}  // namespace quorvel
