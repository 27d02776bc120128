#include "core/session_lines.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/block_reader.h"
#include "core/block_window.h"
#include "core/log_marks.h"
#include "core/mark_lists.h"

namespace quorvel {
namespace {

constexpr LogPosition kLookBack = 50;
constexpr LogPosition kNever = std::numeric_limits<LogPosition>::max();
/// So many sessions share one pass over the log: few enough to keep their records, and the places of their lines, in
/// memory, many enough that a log full of sessions without an end is read only a few times.
constexpr std::size_t kSessionsPerPass = 64 * 1024;
/// A gap that is not worth reading between two sessions.
constexpr LogPosition kGap = 4 * 1024 * 1024;
constexpr int kLinesBetweenQuestions = 1024;

LogPosition startOf(const UserAct& session) {
  return std::max<LogPosition>(1, session.Position - kLookBack);
}

/// The session's number; one that is no text of a line, as only a damaged record holds it, is found nowhere.
SessionId idOf(const UserAct& session) {
  constexpr SessionId kNowhere = ~SessionId{0};
  const std::string& number = session.NumberInLog;
  const bool isUsable =
      number.size() == kSessionNumberLength && number.back() == ')' && number.find('\n') == std::string::npos;
  return isUsable ? sessionIdAt(&number.back()) : kNowhere;
}

/// One pass over the log for sessions in ascending order of Position.
class Pass {
 public:
  Pass(const LogFile& log, BlockWindow& window, std::vector<UserAct> sessions, SessionLineConsumer& consumer)
      : m_log(log),
        m_window(window),
        m_sessions(std::move(sessions)),
        m_consumer(consumer),
        m_starts(m_sessions.size()) {
    for (const UserAct& session : m_sessions)
      m_wanted.insert(idOf(session));
  }

  /// False when the consumer wants no more.
  bool run() {
    for (m_head = 0; m_head < m_sessions.size() && m_goOn; ++m_head) {
      const UserAct& session = m_sessions[m_head];
      if (m_consumer.beginSession(session) && session.Position > 0) deliver(session);
      m_consumer.endSession(session);
      ask(session.Position);
    }
    return m_goOn;
  }

  /// What kept the log from being read to its end.
  [[nodiscard]] const Status& status() const { return m_status; }

 private:
  /// Where the next line of the session at the head starts to be looked for.
  struct Cursor {
    MarkNumber number;        ///< the last place of the session number passed
    LogPosition deliveredTo;  ///< lines in front of this position are done
  };

  void deliver(const UserAct& session) {
    startReading(startOf(session));
    while (m_activated <= m_head && readMore()) {
    }
    if (m_activated <= m_head) return;
    Cursor cursor{m_starts[m_head], startOf(session)};
    m_marks.dropBefore(cursor.number);
    for (int lines = 1; m_goOn && deliverLine(cursor); ++lines) {
      if (m_activated == m_head + 1) m_marks.dropBefore(cursor.number);
      if (lines % kLinesBetweenQuestions == 0) ask(cursor.deliveredTo);
    }
  }

  /// Hands out the next line of the session; false at its end.
  bool deliverLine(Cursor& cursor) {
    const LogPosition from = cursor.deliveredTo;
    LogPosition number = nextNumber(cursor);
    LogPosition start = nextServerStart(from);
    while (std::min(number, start) == kNever && readMore()) {
      number = nextNumber(cursor);
      start = nextServerStart(from);
    }
    const LogPosition hit = std::min(number, start);
    if (hit == kNever) return false;

    const LogPosition end = endOfLine(hit);
    number = nextNumber(cursor);  // the rest of a long line was read meanwhile
    start = nextServerStart(from);
    const LogPosition begin = m_window.findLast('\n', from, hit) + 1;
    std::string_view text = m_window.text(begin, static_cast<std::size_t>(end - begin));
    if (!text.empty() && text.back() == '\r') text.remove_suffix(1);
    cursor.deliveredTo = end + 1;
    return m_consumer.line({text, number < end, start < end});
  }

  /// Moves the cursor to the place in front of the first session number not delivered yet; returns its position.
  LogPosition nextNumber(Cursor& cursor) const {
    for (MarkNumber next = m_marks.nextOfSession(cursor.number); next != 0; next = m_marks.nextOfSession(next)) {
      const LogPosition position = m_marks.position(next);
      if (m_marks.kind(next) == MarkKind::Line && position >= cursor.deliveredTo) return position;
      cursor.number = next;
    }
    return kNever;
  }

  [[nodiscard]] LogPosition nextServerStart(LogPosition from) const {
    const auto next = std::lower_bound(m_serverStarts.begin(), m_serverStarts.end(), from);
    return next == m_serverStarts.end() ? kNever : *next;
  }

  /// Reads on to the end of the line that holds position, so that everything in it is known.
  LogPosition endOfLine(LogPosition position) {
    while (true) {
      const LogPosition known = m_readTo + 1;
      const LogPosition end = m_window.find('\n', position, known);
      if (end < known || !readMore()) return end;
      position = known;
    }
  }

  /// Starts reading at a session that lies far ahead of, or before, what was read so far.
  void startReading(LogPosition start) {
    if (m_activated > m_head || (m_reader && start - m_readTo < kGap)) return;
    const auto blockSize = static_cast<LogPosition>(m_window.blockSize());
    const LogPosition first = (start - 1) / blockSize * blockSize + 1;
    m_reader.reset();
    m_reader = std::make_unique<BlockReader>(m_log, first, m_window.blockSize(),
                                             [this](LogBlock& block) { findSessionNumbers(block, m_wanted); });
    m_isAtEnd = false;
    m_readTo = first - 1;
  }

  /// Reads one more block; false at the end of the log.
  bool readMore() {
    if (m_isAtEnd || !m_goOn) return false;
    auto block = m_reader->next();
    if (!block) {
      if (!m_reader->status().isOk()) m_status = m_reader->status();
      m_isAtEnd = true;
      return false;
    }
    for (std::size_t index = 0; index < block->findings.size();) {
      const LogMark mark = takeMark(block->findings, index);
      activateSessions(mark);
      if (mark.kind == MarkKind::ServerStart) {
        m_serverStarts.push_back(mark.position);
      } else {
        m_marks.append(mark);
      }
    }
    m_readTo = block->end() - 1;
    if (auto displaced = m_window.put(std::move(block))) m_reader->recycle(std::move(displaced));
    ask(m_readTo);
    return m_goOn;
  }

  /// Puts a start into the list of each session that begins at or before the mark.
  void activateSessions(const LogMark& mark) {
    const LogPosition textStart =
        mark.kind == MarkKind::ServerStart ? mark.position : mark.position - (kSessionNumberLength - 1);
    while (m_activated < m_sessions.size() && startOf(m_sessions[m_activated]) <= textStart) {
      m_starts[m_activated] = m_marks.append({mark.position, MarkKind::Connect, idOf(m_sessions[m_activated])});
      ++m_activated;
    }
  }

  void ask(LogPosition position) { m_goOn = m_goOn && m_consumer.keepGoing(static_cast<std::uint64_t>(position)); }

  const LogFile& m_log;
  BlockWindow& m_window;
  const std::vector<UserAct> m_sessions;
  SessionLineConsumer& m_consumer;
  SessionIdSet m_wanted;
  std::unique_ptr<BlockReader> m_reader;
  MarkLists m_marks;
  std::vector<MarkNumber> m_starts;  ///< of the activated sessions: where their places begin
  std::vector<LogPosition> m_serverStarts;
  std::size_t m_head = 0;       ///< the session whose lines are handed out
  std::size_t m_activated = 0;  ///< so many sessions have their start in their list
  LogPosition m_readTo = 0;
  bool m_isAtEnd = false;
  bool m_goOn = true;
  Status m_status;
};

/// Takes sessions off source as long as they ascend, starting with first, which becomes the one behind them.
std::vector<UserAct> takePass(const SessionSource& source, std::optional<UserAct>& first) {
  std::vector<UserAct> sessions;
  while (first && sessions.size() < kSessionsPerPass &&
         (sessions.empty() || first->Position >= sessions.back().Position)) {
    sessions.push_back(std::move(*first));
    first = source();
  }
  return sessions;
}

}  // namespace

Status readSessionLines(const LogFile& log, const SessionSource& source, SessionLineConsumer& consumer,
                        std::size_t blockSize) {
  BlockWindow window(log, blockSize);
  std::optional<UserAct> next = source();
  while (next) {
    Pass pass(log, window, takePass(source, next), consumer);
    if (!pass.run()) return {};
    if (!pass.status().isOk()) return pass.status();
  }
  return window.status();
}

}  // namespace quorvel
