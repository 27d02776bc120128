#include "classic/find/session_lines.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "classic/find/log_marks.h"
#include "classic/find/mark_lists.h"
#include "classic/find/packed_sessions.h"
#include "log/log_stream.h"

namespace quorvel {
namespace {

constexpr LogPosition kLookBack = 50;
/// From the ")" of a session number back to its first byte.
constexpr LogPosition kBackToNumber = kSessionNumberLength - 1;
constexpr LogPosition kNever = std::numeric_limits<LogPosition>::max();
/// At most so many sessions share one pass over the log: few enough to keep their records in memory, many enough that
/// a log full of sessions without an end is read only a few times.
constexpr std::size_t kSessionsPerPass = 96 * 1024;
/// A gap that is not worth reading between two sessions.
constexpr LogPosition kGap = 4 * 1024 * 1024;
constexpr int kLinesBetweenQuestions = 1024;

LogPosition startOf(LogPosition position) {
  return std::max<LogPosition>(1, position - kLookBack);
}

/// The session's number; one that is no text of a line, as only a damaged record holds it, is found nowhere.
SessionId idOf(const UserAct& session) {
  constexpr SessionId kNowhere = ~SessionId{0};
  const std::string& number = session.NumberInLog;
  const bool isUsable =
      number.size() == kSessionNumberLength && number.back() == ')' && number.find('\n') == std::string::npos;
  return isUsable ? sessionIdAt(&number.back()) : kNowhere;
}

/// What a reading to the log's end has shown, so that later passes need not read that far for sessions without an end.
struct WholeReading {
  LastPlaces places;
  LogPosition lastServerStart = 0;
  LogPosition from = kNever;  ///< where the reading began; kNever while none came to the end
};

/// One pass over the log for sessions in ascending order of Position. It may end before the last of them.
class Pass {
 public:
  Pass(const LogFile& log, const LineReading& reading, PackedSessions& sessions, std::size_t first, std::size_t end,
       WholeReading& whole, SessionLineConsumer& consumer)
      : m_log(log),
        m_mostMarks(reading.mostMarks),
        m_sessions(sessions),
        m_whole(whole),
        m_isNoting(whole.from == kNever),
        m_consumer(consumer),
        m_first(first),
        m_end(end),
        m_stream(
            log, reading.blockSize,
            [this](LogBlock& block) { findSessionNumbers(block, m_wanted, m_isNoting ? &m_whole.places : nullptr); },
            [this](const LogBlock& block) { return takeMarks(block); }) {
    m_starts.reserve(end - first);
    for (std::size_t index = first; index < end; ++index) {
      const UserAct& session = m_sessions.at(index);
      m_starts.push_back({session.Position, 0, idOf(session)});
      m_wanted.insert(m_starts.back().id);
    }
    m_reached = startOf(m_starts.front().position) - 1;
  }

  /// False when the consumer wants no more.
  bool run() {
    for (m_head = m_first; m_head < m_end && m_goOn; ++m_head) {
      const UserAct& session = m_sessions.at(m_head);
      if (m_consumer.beginSession(session) && session.Position > 0) deliver();
      m_consumer.endSession(session);
      ask(session.Position);
    }
    return m_goOn;
  }

  /// Behind the last session that was handed out.
  [[nodiscard]] std::size_t end() const { return m_end; }
  /// How many sessions to take into the next pass, as far as this one can tell.
  [[nodiscard]] std::size_t advisedCount() const {
    if (m_isCutShort) return m_fitting;
    const double fitting = 0.9 * static_cast<double>(m_mostMarks) / static_cast<double>(m_peakMarks + 1);
    return static_cast<std::size_t>(
        std::min(static_cast<double>(kSessionsPerPass), 1 + fitting * static_cast<double>(m_end - m_first)));
  }
  /// What kept the log from being read to its end.
  [[nodiscard]] const Status& status() const { return m_stream.status(); }

 private:
  /// How far the lines of the session at the head were handed out.
  struct Cursor {
    MarkNumber passed;        ///< the last place of the session number passed, or the session's start
    std::size_t serverStart;  ///< index of the first server start not passed
    LogPosition deliveredTo;  ///< lines in front of this position are done
    LogPosition last;         ///< nothing of the session lies behind; kNever: not known
  };
  /// Where the lines of a session start.
  struct Start {
    LogPosition position;  ///< its Position
    MarkNumber mark;       ///< where its places begin, once it is activated
    SessionId id;
  };
  struct Line {
    LogPosition begin;
    LogPosition end;
  };

  [[nodiscard]] Start& start(std::size_t session) { return m_starts[session - m_first]; }

  void deliver() {
    const LogPosition begin = startOf(start(m_head).position);
    startReading(begin);
    while (m_activated <= m_head && readMore()) {
    }
    if (m_activated <= m_head) return;
    Cursor cursor{start(m_head).mark, firstServerStart(begin), begin, lastPlaceOfHead()};
    m_marks.dropBefore(cursor.passed);
    for (int lines = 1; m_goOn && deliverLine(cursor); ++lines) {
      if (m_isCutShort || m_activated == m_head + 1) m_marks.dropBefore(cursor.passed);
      if (lines % kLinesBetweenQuestions == 0) ask(cursor.deliveredTo);
    }
  }

  /// Hands out the next line of the session; false at its end.
  bool deliverLine(Cursor& cursor) {
    MarkNumber number = nextNumber(cursor);
    while (number == 0 && cursor.serverStart == m_serverStarts.size()) {
      if (m_stream.readTo() >= cursor.last || !readMore()) return false;
      number = nextNumber(cursor);
    }
    const Line line = lineOf(number, cursor);
    const MarkNumber next = takeNumbers(cursor, line);
    if (next != 0) m_stream.window().prefetch(m_marks.position(next));
    const bool hasServerStart = passServerStarts(cursor, line.end);
    cursor.deliveredTo = line.end + 1;
    std::string_view text = m_stream.window().text(line.begin, static_cast<std::size_t>(line.end - line.begin));
    if (text.ends_with('\r')) text.remove_suffix(1);
    return m_consumer.line({text, m_numbers, hasServerStart});
  }

  /// The line that holds the session number, or the next server start if that comes first. Everything in it is known
  /// afterwards.
  Line lineOf(MarkNumber number, const Cursor& cursor) {
    LogPosition hit = number != 0 ? m_marks.position(number) : kNever;
    LineExtent extent;
    if (cursor.serverStart < m_serverStarts.size() && m_serverStarts[cursor.serverStart] < hit) {
      hit = m_serverStarts[cursor.serverStart];
    } else {
      extent = std::bit_cast<LineExtent>(m_marks.detail(number));
    }
    Line line{hit - extent.before, hit + extent.behind};
    if (extent.behind == 0) line.end = m_stream.endOfLine(hit);
    if (extent.before == 0) line.begin = m_stream.window().findLast('\n', cursor.deliveredTo, hit) + 1;
    line.begin = std::max(line.begin, cursor.deliveredTo);
    return line;
  }

  /// Notes where the session number stands in the line; returns the first one behind the line, 0 when it is not known.
  MarkNumber takeNumbers(Cursor& cursor, const Line& line) {
    m_numbers.clear();
    MarkNumber number = nextNumber(cursor);
    for (; number != 0 && m_marks.position(number) < line.end; number = nextNumber(cursor)) {
      m_numbers.push_back(static_cast<std::size_t>(m_marks.position(number) - kBackToNumber - line.begin));
      cursor.passed = number;
    }
    return number;
  }

  /// The next place of the session number, 0 when it is not known. Passes the starts of other sessions.
  MarkNumber nextNumber(Cursor& cursor) const {
    MarkNumber next = m_marks.nextOfSession(cursor.passed);
    for (; next != 0 && m_marks.kind(next) != MarkKind::Line; next = m_marks.nextOfSession(next))
      cursor.passed = next;
    return next;
  }

  [[nodiscard]] std::size_t firstServerStart(LogPosition from) const {
    return static_cast<std::size_t>(std::lower_bound(m_serverStarts.begin(), m_serverStarts.end(), from) -
                                    m_serverStarts.begin());
  }

  /// Whether a server start lies in front of end.
  bool passServerStarts(Cursor& cursor, LogPosition end) const {
    const std::size_t first = cursor.serverStart;
    while (cursor.serverStart < m_serverStarts.size() && m_serverStarts[cursor.serverStart] < end)
      ++cursor.serverStart;
    return cursor.serverStart != first;
  }

  /// Starts reading at a session that lies far ahead of, or before, what was read so far.
  void startReading(LogPosition start) {
    if (m_activated > m_head || (m_isReading && start - m_stream.readTo() < kGap)) return;
    m_stream.start(start);
    m_readFrom = start;
    m_isReading = true;
  }

  bool readMore() {
    if (!m_goOn) return false;
    if (m_stream.readMore()) return true;
    if (m_isNoting && m_stream.readTo() >= m_log.length()) m_whole.from = m_readFrom;
    return false;
  }

  [[nodiscard]] LogPosition lastPlaceOfHead() {
    if (m_isNoting || startOf(start(m_head).position) < m_whole.from) return kNever;
    return std::max(m_whole.places.of(start(m_head).id).value_or(kNever), m_whole.lastServerStart);
  }

  bool takeMarks(const LogBlock& block) {
    for (std::size_t index = 0; index < block.findings.size();) {
      const LogMark mark = takeMark(block.findings, index);
      activateSessions(mark);
      if (mark.kind == MarkKind::ServerStart) {
        m_serverStarts.push_back(mark.position);
        if (m_isNoting) m_whole.lastServerStart = mark.position;
      } else if (!m_isCutShort || mark.id == start(m_head).id) {
        m_marks.append(mark);
      }
    }
    m_peakMarks = std::max(m_peakMarks, m_marks.size());
    if (m_marks.size() > m_mostMarks && !m_isCutShort) cutShort();
    ask(m_reached);  // what is read ahead says nothing of how much was handed out
    return m_goOn;
  }

  /// Leaves all sessions behind the one at the head to later passes.
  void cutShort() {
    constexpr double kMargin = 0.8;
    const LogPosition begin = startOf(start(m_head).position);
    const LogPosition whole = std::max<LogPosition>(1, m_log.length() - begin + 1);  // a damaged record may lie behind
    const double share = static_cast<double>(m_stream.readTo() - begin) / static_cast<double>(whole);
    const auto active = static_cast<double>(m_activated - std::min(m_activated, m_head));
    m_fitting = 1 + static_cast<std::size_t>(kMargin * share * active);
    m_end = m_head + 1;
    m_isCutShort = true;
  }

  /// Puts a start into the list of each session that begins at or before the mark.
  void activateSessions(const LogMark& mark) {
    const LogPosition textStart = mark.position - (mark.kind == MarkKind::Line ? kBackToNumber : 0);
    for (; m_activated < m_end && startOf(start(m_activated).position) <= textStart; ++m_activated)
      start(m_activated).mark = m_marks.append({mark.position, MarkKind::Connect, start(m_activated).id});
  }

  /// Asks whether to go on, having come to position; sessions overlap, but progress only grows.
  void ask(LogPosition position) {
    m_reached = std::max(m_reached, position);
    m_goOn = m_goOn && m_consumer.keepGoing(static_cast<std::uint64_t>(m_reached));
  }

  const LogFile& m_log;
  const std::size_t m_mostMarks;
  PackedSessions& m_sessions;
  WholeReading& m_whole;
  const bool m_isNoting;  ///< in m_whole: nobody reads there meanwhile
  SessionLineConsumer& m_consumer;
  const std::size_t m_first;
  std::size_t m_end;
  SessionIdSet m_wanted;
  MarkLists m_marks;
  std::vector<Start> m_starts;
  std::vector<LogPosition> m_serverStarts;
  std::vector<std::size_t> m_numbers;  ///< in the line handed out
  std::size_t m_head = m_first;        ///< the session whose lines are handed out
  std::size_t m_activated = m_first;   ///< the first session whose start is not in its list
  std::size_t m_peakMarks = 0;
  std::size_t m_fitting = 0;  ///< so many sessions would not have been too many, if it was cut short
  bool m_isCutShort = false;
  LogPosition m_reached = 0;
  bool m_goOn = true;
  bool m_isReading = false;
  LogPosition m_readFrom = 1;
  LogStream m_stream;  ///< last, so that its thread has ended before what it looks at is gone
};

/// Takes sessions off source as long as they ascend, starting with first, which becomes the one behind them. Sessions
/// without a position fit in anywhere.
void takeAscending(const SessionSource& source, std::optional<UserAct>& first, PackedSessions& sessions) {
  sessions.clear();
  LogPosition position = 0;
  while (first && sessions.size() < kSessionsPerPass && (first->Position <= 0 || first->Position >= position)) {
    position = std::max(position, first->Position);
    sessions.add(*first);
    first = source();
  }
}

}  // namespace

Status readSessionLines(const LogFile& log, const SessionSource& source, SessionLineConsumer& consumer,
                        const LineReading& reading) {
  PackedSessions sessions(kSessionsPerPass);
  WholeReading whole;
  std::size_t count = kSessionsPerPass;
  for (std::optional<UserAct> next = source(); next;) {
    takeAscending(source, next, sessions);
    for (std::size_t first = 0; first < sessions.size();) {
      Pass pass(log, reading, sessions, first, std::min(sessions.size(), first + count), whole, consumer);
      if (!pass.run()) return {};
      if (!pass.status().isOk()) return pass.status();
      first = pass.end();
      count = pass.advisedCount();
    }
  }
  return {};
}

}  // namespace quorvel
