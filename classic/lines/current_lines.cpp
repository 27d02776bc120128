#include "classic/lines/current_lines.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "activity/block_cutter.h"
#include "classic/lines/ordered_texts.h"
#include "grammar/all_grammars.h"
#include "log/log_file_source.h"
#include "log/text.h"

namespace quorvel {
namespace {

/// From the ")" of a session number back to the beginning of its line at most.
constexpr LogPosition kLongestFront = 50;
/// A gap that is not worth reading between two sessions.
constexpr LogPosition kGap = 4 * 1024 * 1024;
constexpr std::size_t kLookedAt = 64;  ///< bytes after a number
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view withoutReturn(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

class Pass final : SessionTexts {
 public:
  Pass(const LogFile& log, SessionList& sessions, LineRule& rule, SessionTextTarget& target, const LineReading& reading)
      : m_log(log),
        m_sessions(sessions),
        m_rule(rule),
        m_target(target),
        m_texts(sessions.size(), log, target, reading),
        m_order(sessions.size()) {
    std::iota(m_order.begin(), m_order.end(), std::size_t{0});
    std::stable_sort(m_order.begin(), m_order.end(),
                     [this](std::size_t a, std::size_t b) { return m_sessions.position(a) < m_sessions.position(b); });
  }

  Status run() {
    beginUpTo(0);  // sessions without a place in the log have no lines
    while (m_goOn && (!m_open.empty() || m_begun < m_order.size()) && readBlock())
      takeBlock();
    if (m_goOn) endAll();
    m_texts.endCurrent();
    return m_texts.status().isOk() ? m_status : m_texts.status();
  }

 private:
  /// A session that may have more lines.
  struct Open {
    std::size_t index = 0;
    LogPosition lastLine = 0;  ///< 0: not known
    std::uint8_t state = 0;
  };

  // -- What the rule writes --

  [[nodiscard]] std::uint32_t count() const override { return 1; }
  void addLine(const LogLine& line) override {
    if (line.isLong()) {
      m_texts.addPart(m_taker, line.begin, line.end);
    } else {
      m_texts.add(m_taker, line.text);
    }
    m_texts.add(m_taker, kLineEnd);
    m_texts.countLine(m_taker);
  }
  void add(std::string_view text) override { m_texts.add(m_taker, text); }

  // -- Reading --

  bool readBlock() {
    if (m_open.empty() && !m_isInLine) {
      const LogPosition next = std::max<LogPosition>(1, m_sessions.position(m_order[m_begun]) - kLongestFront);
      if (next > m_log.length()) return false;
      if (!m_cutter || next - m_readTo > kGap) startAt(next);
    }
    const auto isMore = m_cutter->next(m_block, true);
    if (!isMore.isOk()) m_status = isMore.error();
    return isMore.isOk() && isMore.value();
  }

  void startAt(LogPosition position) {
    m_cutter.reset();
    m_source = std::make_unique<LogFileSource>(m_log, position);
    m_cutter = std::make_unique<BlockCutter>(*m_source);
    m_cutter->begin(servU(), {});
    m_start = position;
  }

  void takeBlock() {
    const std::string_view text = m_block.text();
    const LogPosition first = m_start + static_cast<LogPosition>(m_block.position) - 1;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t lineEnd = text.find('\n', at);
      const std::size_t end = std::min(lineEnd, text.size());
      if (!m_isInLine) {
        m_line.begin = first + static_cast<LogPosition>(at);
        m_line.text = withoutReturn(text.substr(at, end - at));
      }
      m_line.end = first + static_cast<LogPosition>(end);
      if (lineEnd == std::string_view::npos && !isAtEnd(m_line.end)) {
        holdLine();
      } else {
        takeLine();
      }
      at = end + 1;
    }
    m_readTo = first + static_cast<LogPosition>(text.size()) - 1;
    m_goOn = m_texts.handOut(m_readTo) && m_target.keepGoing(m_readTo);
  }

  [[nodiscard]] bool isAtEnd(LogPosition behind) const { return behind > m_log.length(); }

  /// The line goes on in the next block; its front is kept.
  void holdLine() {
    if (!std::exchange(m_isInLine, true)) m_front = m_line.text.substr(0, kLongestFront + kLookedAt);
    m_line.text = {};
  }

  /// All of a line is known: takes it for the session it belongs to.
  void takeLine() {
    const bool wasHeld = std::exchange(m_isInLine, false);
    std::string_view front = wasHeld ? std::string_view(m_front) : m_line.text;
    if (m_line.begin == 1 && front.starts_with(kByteOrderMark)) front.remove_prefix(kByteOrderMark.size());
    beginUpTo(m_line.end);
    if (m_open.empty()) return;
    Event event;
    servU().parse(front, m_dialect, event);
    const auto found = m_open.find(event.key);
    if (found == m_open.end()) return;
    if (wasHeld) completeLine();
    if (!m_line.isLong()) m_line.end = m_line.begin + static_cast<LogPosition>(m_line.text.size());
    Open& session = found->second;
    m_taker = session.index;
    const auto behindNumber = static_cast<std::size_t>(event.key.data() - front.data()) + event.key.size() + 1;
    const std::uint32_t marks = m_rule.marksOf(false, front.substr(behindNumber, kLookedAt));
    const bool isLast = session.lastLine != 0 && m_line.begin >= session.lastLine;
    const bool goesOn = m_rule.take(m_line, marks, event.kind == EventKind::Close, session.state, *this);
    if (!goesOn || isLast) finish(found);
  }

  /// The text, or the end, of a line that came in pieces.
  void completeLine() {
    m_scratch.resize(m_line.isLong() ? 1 : static_cast<std::size_t>(m_line.end - m_line.begin));
    const auto count = m_log.readAt(m_line.end - static_cast<LogPosition>(m_scratch.size()), m_scratch);
    if (!count.isOk()) m_status = count.error();
    m_scratch.resize(count.isOk() ? count.value() : 0);
    if (m_line.isLong() && m_scratch == "\r") --m_line.end;
    if (!m_line.isLong()) m_line.text = withoutReturn(m_scratch);
  }

  // -- Sessions --

  /// Begins the sessions whose number ends before position.
  void beginUpTo(LogPosition position) {
    for (; m_begun < m_order.size() && m_sessions.position(m_order[m_begun]) <= position; ++m_begun) {
      const std::size_t index = m_order[m_begun];
      const UserAct& session = m_sessions.session(index);
      m_texts.add(index, m_rule.header(session));
      const std::string_view number = session.NumberInLog;
      if (position == 0 || number.size() < 2) {
        m_texts.finish(index);
        continue;
      }
      const auto [place, isNew] = m_open.try_emplace(std::string(number.substr(1, number.size() - 2)));
      if (!isNew) m_texts.finish(place->second.index);
      place->second = {index, session.LastPosition, 0};
    }
  }

  using OpenSessions = std::map<std::string, Open, std::less<>>;

  void finish(OpenSessions::iterator session) {
    m_texts.finish(session->second.index);
    m_open.erase(session);
  }

  void endAll() {
    beginUpTo(std::numeric_limits<LogPosition>::max());
    for (std::size_t index = 0; index < m_sessions.size(); ++index)
      m_texts.finish(index);
    m_goOn = m_texts.handOut(m_readTo);
  }

  const LogFile& m_log;
  SessionList& m_sessions;
  LineRule& m_rule;
  SessionTextTarget& m_target;
  OrderedTexts m_texts;
  const Dialect m_dialect;

  std::vector<std::size_t> m_order;  ///< in which sessions begin
  std::size_t m_begun = 0;           ///< so many sessions, in that order
  OpenSessions m_open;               ///< by number, without its parentheses
  std::size_t m_taker = 0;           ///< the session that the rule looks at a line for

  LogLine m_line;
  bool m_isInLine = false;  ///< the line goes on in the next block
  std::string m_front;      ///< of that line
  std::string m_scratch;

  std::unique_ptr<LogFileSource> m_source;
  std::unique_ptr<BlockCutter> m_cutter;
  Block m_block;
  LogPosition m_start = 1;  ///< where the cutter began
  LogPosition m_readTo = 0;
  bool m_goOn = true;
  Status m_status;
};

}  // namespace

Status readCurrentLines(const LogFile& log, SessionList& sessions, LineRule& rule, SessionTextTarget& target,
                        const LineReading& reading) {
  return Pass(log, sessions, rule, target, reading).run();
}

}  // namespace quorvel
