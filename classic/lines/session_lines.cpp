#include "classic/lines/session_lines.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <numeric>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "classic/lines/number_scan.h"
#include "classic/lines/ordered_texts.h"
#include "classic/lines/pending_sessions.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr LogPosition kLookBack = 50;
constexpr LogPosition kNever = std::numeric_limits<LogPosition>::max();
/// A gap that is not worth reading between two sessions.
constexpr LogPosition kGap = 4 * 1024 * 1024;
constexpr std::string_view kBeforeNumber = " - ";
constexpr std::string_view kConnected = " Connected to ";

/// The session's number; one that is no text of a line, as only a damaged record holds it, is found nowhere.
SessionId idOf(const UserAct& session, bool foldsCase) {
  constexpr SessionId kNowhere = ~SessionId{0};
  const std::string& number = session.NumberInLog;
  const bool isUsable =
      number.size() == kSessionNumberLength && number.back() == ')' && number.find('\n') == std::string::npos;
  return isUsable ? sessionIdAt(&number.back(), foldsCase) : kNowhere;
}

/// The sessions of one number that are under way.
struct Number {
  std::uint32_t marks = 0;    ///< in the line so far
  std::uint32_t groups = 0;   ///< the first of its groups
  std::uint32_t newest = 0;   ///< the last of its newcomers
  std::uint32_t pending = 0;  ///< how many sessions wait for a connect line
};

/// Sessions of one number in the same state of the rule, which take the same lines.
struct Group {
  SessionId id = 0;
  std::uint32_t next = 0;   ///< group of the same number
  std::uint32_t place = 0;  ///< in the list of all groups
  std::uint32_t first = 0;  ///< its sessions, chained
  std::uint32_t last = 0;
  std::uint32_t count = 0;
  std::uint8_t state = 0;
};

/// A session in its first line, of which it may see a part only.
struct Newcomer {
  std::uint32_t session = 0;
  std::uint32_t older = 0;  ///< of the same number
  SessionId id = 0;
  LogPosition begin = 0;
  LogPosition number = 0;   ///< where its number stands in its connect line, as its record says
  std::uint32_t marks = 0;  ///< in the line so far
  bool isWaiting = false;   ///< for its connect line
  bool isPassed = false;    ///< a connect line there or further on was looked at
  bool isPending = false;   ///< noted as one that waits for any connect line
  ConnectText connect;
};

/// Things by number from 1; 0 stands for none. The memory of those dropped is used again.
template <typename Thing>
class Pool {
 public:
  [[nodiscard]] Thing& operator[](std::uint32_t number) { return m_things[number]; }
  [[nodiscard]] std::uint32_t add() {
    if (m_spare.empty()) {
      m_things.emplace_back();
      return static_cast<std::uint32_t>(m_things.size() - 1);
    }
    const std::uint32_t number = m_spare.back();
    m_spare.pop_back();
    m_things[number] = {};
    return number;
  }
  void drop(std::uint32_t number) { m_spare.push_back(number); }

 private:
  std::vector<Thing> m_things{1};
  std::vector<std::uint32_t> m_spare;
};

/// The numbers that have sessions under way.
class NumberTable {
 public:
  [[nodiscard]] std::uint32_t find(SessionId id) const {
    if (id < kDigitIds) return m_digits[static_cast<std::size_t>(id)];
    if (m_odd.empty()) return 0;
    const auto hit = m_odd.find(id);
    return hit == m_odd.end() ? 0 : hit->second;
  }
  void set(SessionId id, std::uint32_t number) {
    if (id < kDigitIds) {
      m_digits[static_cast<std::size_t>(id)] = number;
    } else if (number != 0) {
      m_odd[id] = number;
    } else {
      m_odd.erase(id);
    }
  }

 private:
  std::vector<std::uint32_t> m_digits = std::vector<std::uint32_t>(kDigitIds);
  std::unordered_map<SessionId, std::uint32_t> m_odd;
};

class Pass final : SessionTexts {
 public:
  Pass(const LogFile& log, SessionList& sessions, LineRule& rule, SessionTextTarget& target, const LineReading& reading)
      : m_log(log),
        m_sessions(sessions),
        m_rule(rule),
        m_kind(rule.kind()),
        m_target(target),
        m_reading(reading),
        m_texts(sessions.size(), log, target, reading),
        m_next(sessions.size()) {
    sortSessions();
  }

  Status run() {
    beginWithoutPlace();
    while (m_goOn && (m_underWay > 0 || m_begun < m_sessions.size()) && readBlock())
      takeBlock();
    if (m_goOn) endAll();
    m_texts.endCurrent();
    return m_texts.status().isOk() ? m_status : m_texts.status();
  }

 private:
  // -- What the rule writes --

  [[nodiscard]] std::uint32_t count() const override { return m_takerCount; }
  void addLine(const LogLine& line) override {
    for (std::uint32_t session = m_takers, left = m_takerCount; left > 0; --left, session = m_next[session]) {
      if (line.isLong()) {
        m_texts.addPart(session, line.begin, line.end);
      } else {
        m_texts.add(session, line.text);
      }
      m_texts.add(session, kLineEnd);
      m_texts.countLine(session);
    }
  }
  void add(std::string_view text) override {
    for (std::uint32_t session = m_takers, left = m_takerCount; left > 0; --left, session = m_next[session])
      m_texts.add(session, text);
  }

  // -- Sessions in the order in which they begin --

  void sortSessions() {
    const auto isBefore = [this](std::size_t a, std::size_t b) {
      return m_sessions.position(a) < m_sessions.position(b);
    };
    bool isSorted = true;
    for (std::size_t index = 1; index < m_sessions.size() && isSorted; ++index)
      isSorted = !isBefore(index, index - 1);
    if (isSorted) return;
    m_order.resize(m_sessions.size());
    std::iota(m_order.begin(), m_order.end(), 0u);
    std::stable_sort(m_order.begin(), m_order.end(), isBefore);
  }
  /// Only valid while there is one.
  [[nodiscard]] std::uint32_t nextSession() const {
    return m_order.empty() ? static_cast<std::uint32_t>(m_begun) : m_order[m_begun];
  }
  [[nodiscard]] LogPosition nextBegin() const {
    if (m_begun == m_sessions.size()) return kNever;
    return std::max<LogPosition>(1, m_sessions.position(nextSession()) - kLookBack);
  }

  /// Sessions without a place in the log have no lines.
  void beginWithoutPlace() {
    while (m_begun < m_sessions.size() && m_sessions.position(nextSession()) <= 0)
      beginWithoutLines();
    m_nextBegin = nextBegin();
  }

  void beginWithoutLines() {
    const std::uint32_t index = nextSession();
    m_texts.add(index, m_rule.header(m_sessions.session(index)));
    m_texts.finish(index);
    ++m_begun;
  }

  void beginSession() {
    const std::uint32_t index = nextSession();
    const UserAct& session = m_sessions.session(index);
    m_texts.add(index, m_rule.header(session));
    Newcomer newcomer;
    newcomer.session = index;
    newcomer.id = idOf(session, m_kind.foldsCase);
    newcomer.begin = m_nextBegin;
    newcomer.number = m_sessions.position(index) - (kSessionNumberLength - 1);
    newcomer.isWaiting = m_kind.waitsForConnect;
    if (newcomer.isWaiting) newcomer.connect = {session.ConnectTime, session.IP};
    addNewcomer(std::move(newcomer));
    ++m_begun;
    ++m_underWay;
    m_nextBegin = nextBegin();
  }

  void addNewcomer(Newcomer&& newcomer) {
    std::uint32_t number = m_table.find(newcomer.id);
    if (number == 0) {
      number = m_numbers.add();
      m_table.set(newcomer.id, number);
    }
    newcomer.older = m_numbers[number].newest;
    m_newcomers.push_back(std::move(newcomer));
    m_numbers[number].newest = static_cast<std::uint32_t>(m_newcomers.size());
  }

  // -- Reading --

  /// False at the log's end.
  bool readBlock() {
    if (m_underWay == 0) {
      if (m_nextBegin > m_log.length()) return false;
      if (!m_reader || m_nextBegin - m_readTo > kGap) startReading();
    }
    auto block = m_reader->next();
    if (!block) {
      m_status = m_reader->status();
      return false;
    }
    if (m_block) m_reader->recycle(std::move(m_block));
    m_block = std::move(block);
    m_readTo = m_block->end() - 1;
    return true;
  }

  /// From the block in which the next session begins on.
  void startReading() {
    const auto blockSize = static_cast<LogPosition>(m_reading.blockSize);
    const LogPosition first = (m_nextBegin - 1) / blockSize * blockSize + 1;
    m_reader.reset();  // one reading thread at a time
    m_block.reset();
    m_scan.emplace(m_rule, m_log, first);
    m_reader.emplace(m_log, first, m_reading.blockSize, [this](LogBlock& block) { m_scan->search(block); });
    m_serverStart = 0;
  }

  void takeBlock() {
    for (std::size_t index = 0; index < m_block->findings.size();) {
      const LineEvent event = takeEvent(*m_block, index);
      if (event.kind == LineEvent::LineEnd) {
        endLine({event.lineBegin, event.position, {}});
        continue;
      }
      while (m_nextBegin <= event.position)
        beginSession();
      if (event.kind == LineEvent::ServerStart) {
        m_serverStart = event.position;
      } else if (const std::uint32_t number = m_table.find(event.id); number != 0) {
        takeNumber(event, number);
      }
    }
    m_goOn = m_texts.handOut(m_readTo) && m_target.keepGoing(m_readTo);
  }

  void endAll() {
    while (m_begun < m_sessions.size())
      beginWithoutLines();
    for (std::size_t index = 0; index < m_sessions.size(); ++index)
      m_texts.finish(index);
    m_goOn = m_texts.handOut(m_readTo);
  }

  /// What stands in the log, in a block at hand or read again; valid until the next call.
  [[nodiscard]] std::string_view textAt(LogPosition from, std::size_t count, std::string& scratch) {
    if (m_block && from >= m_block->first && from + static_cast<LogPosition>(count) <= m_block->end())
      return {m_block->data() + (from - m_block->first), count};
    scratch.resize(count);
    const auto read = m_log.readAt(from, scratch);
    if (!read.isOk()) m_status = read.error();
    scratch.resize(read.isOk() ? read.value() : 0);
    return scratch;
  }

  /// At least count bytes of the line from position on, fewer only where the line ends.
  [[nodiscard]] std::string_view restOfLine(LogPosition position, std::size_t count) {
    const LogPosition left = std::max<LogPosition>(0, m_log.length() + 1 - position);
    const std::size_t wanted = std::min(count + kLineEnd.size(), static_cast<std::size_t>(left));
    const std::string_view text = textAt(position, wanted, m_scratch);
    const std::size_t lineEnd = text.find('\n');
    const bool isWholeRest = lineEnd != std::string_view::npos || wanted < count + kLineEnd.size();
    return isWholeRest ? withoutReturn(text.substr(0, lineEnd)) : text;
  }

  static std::string_view withoutReturn(std::string_view line) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
  }

  // -- Numbers --

  void takeNumber(const LineEvent& event, std::uint32_t index) {
    Number& number = m_numbers[index];
    if (number.marks == 0) m_touched.push_back(event.id);
    number.marks |= event.marks;
    // An older newcomer sees all that a younger one sees.
    for (std::uint32_t at = number.newest; at != 0; at = m_newcomers[at - 1].older) {
      Newcomer& newcomer = m_newcomers[at - 1];
      const bool seesDash = event.position - newcomer.begin >= 2;
      const std::uint32_t marks = seesDash ? event.marks : event.marks & ~m_kind.dashMarks;
      if (seesDash && (newcomer.marks & marks) == marks) break;
      newcomer.marks |= marks;
    }
    if ((event.marks & kConnectMark) != 0 && m_kind.waitsForConnect) connect(event, number);
  }

  /// Finds the sessions whose connect line this is. Nearly always it is the one that begins here.
  void connect(const LineEvent& event, Number& number) {
    for (std::uint32_t at = number.newest; at != 0; at = m_newcomers[at - 1].older) {
      Newcomer& newcomer = m_newcomers[at - 1];
      if (newcomer.isPassed) break;  // as all older ones are
      newcomer.isPassed = newcomer.number <= event.position;
      if (!newcomer.isWaiting) continue;
      newcomer.isWaiting = !connects(event, newcomer);
      if (newcomer.isWaiting && newcomer.isPassed) addPending(newcomer, at - 1);
    }
    if (!m_pending.isEmpty()) connectPending(event, number);
  }

  [[nodiscard]] bool connects(const LineEvent& event, const Newcomer& newcomer) {
    const auto& [time, ip] = newcomer.connect;
    const LogPosition begin = event.position - static_cast<LogPosition>(time.size() + kBeforeNumber.size());
    if (begin < newcomer.begin || time.find('\n') != std::string::npos) return false;
    const std::string_view before = textAt(begin, time.size(), m_scratch);
    if (!(m_kind.foldsCase ? equalsFolded(before, time) : before == time)) return false;
    const std::string_view after = restOfLine(behindConnected(event), ip.size());
    return m_kind.foldsCase ? startsWithFolded(after, ip) : after.starts_with(ip);
  }

  void connectPending(const LineEvent& event, Number& number) {
    const LogPosition timeEnd = event.position - static_cast<LogPosition>(kBeforeNumber.size());
    const LogPosition begin = std::max<LogPosition>(1, timeEnd - static_cast<LogPosition>(m_pending.longestTime()));
    m_before = textAt(begin, static_cast<std::size_t>(std::max<LogPosition>(0, timeEnd - begin)), m_scratch);
    m_after = restOfLine(behindConnected(event), m_pending.longestIp());
    if (m_kind.foldsCase) {
      m_before = foldCase(m_before);
      m_after = foldCase(m_after);
    }
    m_taken.clear();
    m_pending.take(event.id, m_before, m_after, m_taken);
    for (const auto& [session, place] : m_taken) {
      if (place >= m_newcomers.size() || m_newcomers[place].session != session) {
        --number.pending;
        m_connected.push_back({event.id, session});
      } else if (connects(event, m_newcomers[place])) {
        m_newcomers[place].isWaiting = false;
      } else {
        addPending(m_newcomers[place], place);  // the session begins in the middle of the connect text
      }
    }
  }

  void addPending(Newcomer& newcomer, std::size_t place) {
    newcomer.isPending = true;
    const auto& [time, ip] = newcomer.connect;
    if (time.find('\n') != std::string::npos || ip.find('\n') != std::string::npos) return;  // stands in no line
    const ConnectText text = m_kind.foldsCase ? ConnectText{foldCase(time), foldCase(ip)} : newcomer.connect;
    m_pending.add(newcomer.id, text, {newcomer.session, static_cast<std::uint32_t>(place)});
  }

  [[nodiscard]] static LogPosition behindConnected(const LineEvent& event) {
    return event.position + kSessionNumberLength + static_cast<LogPosition>(kConnected.size());
  }

  // -- Ends of lines --

  void endLine(const LogLine& line) {
    m_line = line;
    m_hasLineText = false;
    for (const SessionId id : m_touched)
      stepGroups(id);
    if (m_serverStart != 0 && m_kind.endsAtServerStart) endGroups();
    for (const auto& [id, session] : m_connected)
      settle(id, session, m_line.begin, m_numbers[m_table.find(id)].marks, m_serverStart != 0);
    m_connected.clear();
    if (!m_newcomers.empty()) settleNewcomers();
    for (const SessionId id : m_touched) {
      m_numbers[m_table.find(id)].marks = 0;
      dropIfIdle(id);
    }
    m_touched.clear();
    m_serverStart = 0;
  }

  /// Shows the line to the rule on behalf of a chain of sessions that see it from begin on. False when it is their
  /// last.
  [[nodiscard]] bool take(std::uint32_t sessions, std::uint32_t count, LogPosition begin, std::uint32_t marks,
                          bool hasServerStart, std::uint8_t& state) {
    m_takers = sessions;
    m_takerCount = count;
    const bool goesOn = marks == 0 || m_rule.take(lineFrom(begin), marks, hasServerStart, state, *this);
    return goesOn && !(hasServerStart && m_kind.endsAtServerStart);
  }

  [[nodiscard]] LogLine lineFrom(LogPosition begin) {
    if (!m_hasLineText) {
      m_hasLineText = true;
      if (m_line.isLong()) {
        if (textAt(m_line.end - 1, 1, m_lineScratch) == "\r") --m_line.end;
      } else {
        m_line.text = textAt(m_line.begin, static_cast<std::size_t>(m_line.end - m_line.begin), m_lineScratch);
        m_line.text = withoutReturn(m_line.text);
        m_line.end = m_line.begin + static_cast<LogPosition>(m_line.text.size());
      }
    }
    LogLine line = m_line;
    if (begin <= line.begin) return line;
    line.begin = std::min(begin, line.end);
    const auto size = static_cast<std::size_t>(line.end - line.begin);
    if (!m_line.isLong()) line.text.remove_prefix(line.text.size() - size);
    if (m_line.isLong() && !line.isLong()) line.text = textAt(line.begin, size, m_lineScratch);
    return line;
  }

  void stepGroups(SessionId id) {
    const std::uint32_t number = m_table.find(id);
    std::uint32_t group = std::exchange(m_numbers[number].groups, 0);
    while (group != 0) {
      Group& taking = m_groups[group];
      const std::uint32_t next = taking.next;
      const std::uint32_t marks = m_numbers[number].marks;
      if (take(taking.first, taking.count, m_line.begin, marks, m_serverStart != 0, taking.state)) {
        addToNumber(number, group);
      } else {
        finishGroup(group);
      }
      group = next;
    }
  }

  /// Adds a group to those of its number, or its sessions to the one there in the same state.
  void addToNumber(std::uint32_t number, std::uint32_t group) {
    Group& added = m_groups[group];
    for (std::uint32_t other = m_numbers[number].groups; other != 0; other = m_groups[other].next) {
      Group& joined = m_groups[other];
      if (joined.state != added.state) continue;
      m_next[joined.last] = added.first;
      joined.last = added.last;
      joined.count += added.count;
      return dropGroup(group);
    }
    added.next = std::exchange(m_numbers[number].groups, group);
  }

  /// Shows a session that is in no group yet its line, and puts it into one.
  void settle(SessionId id, std::uint32_t session, LogPosition begin, std::uint32_t marks, bool hasServerStart) {
    std::uint8_t state = 0;
    if (!take(session, 1, begin, marks, hasServerStart, state)) return finishSessions(session, 1);
    const std::uint32_t group = m_groups.add();
    m_groups[group] = {id, 0, static_cast<std::uint32_t>(m_all.size()), session, session, 1, state};
    m_all.push_back(group);
    addToNumber(m_table.find(id), group);
  }

  void settleNewcomers() {
    std::vector<Newcomer> newcomers = std::exchange(m_newcomers, {});
    for (const Newcomer& newcomer : newcomers)
      m_numbers[m_table.find(newcomer.id)].newest = 0;
    for (Newcomer& newcomer : newcomers) {
      if (!newcomer.isWaiting) {
        const bool seesServerStart = m_serverStart != 0 && newcomer.begin <= m_serverStart;
        settle(newcomer.id, newcomer.session, newcomer.begin, newcomer.marks, seesServerStart);
      } else if (newcomer.number > m_line.end) {  // its connect line is still to come
        newcomer.marks = 0;
        addNewcomer(std::move(newcomer));
      } else {
        if (!newcomer.isPending) addPending(newcomer, kNoPlace);
        ++m_numbers[m_table.find(newcomer.id)].pending;
      }
    }
    for (const Newcomer& newcomer : newcomers)
      if (m_table.find(newcomer.id) != 0 && m_numbers[m_table.find(newcomer.id)].marks == 0) dropIfIdle(newcomer.id);
  }

  /// At a server start: all but the newcomers.
  void endGroups() {
    while (!m_all.empty()) {
      const SessionId id = m_groups[m_all.back()].id;
      m_numbers[m_table.find(id)].groups = 0;
      finishGroup(m_all.back());
      if (m_numbers[m_table.find(id)].marks == 0) dropIfIdle(id);
    }
  }

  void finishGroup(std::uint32_t group) {
    finishSessions(m_groups[group].first, m_groups[group].count);
    dropGroup(group);
  }

  void dropGroup(std::uint32_t group) {
    const std::uint32_t place = m_groups[group].place;
    m_groups[m_all.back()].place = place;
    m_all[place] = m_all.back();
    m_all.pop_back();
    m_groups.drop(group);
  }

  void finishSessions(std::uint32_t session, std::uint32_t count) {
    m_underWay -= count;
    for (; count > 0; --count, session = m_next[session])
      m_texts.finish(session);
  }

  /// Not to be called for a number touched in the line.
  void dropIfIdle(SessionId id) {
    const std::uint32_t index = m_table.find(id);
    const Number& number = m_numbers[index];
    if (number.groups != 0 || number.newest != 0 || number.pending != 0) return;
    m_numbers.drop(index);
    m_table.set(id, 0);
  }

  static constexpr std::size_t kNoPlace = std::numeric_limits<std::uint32_t>::max();

  const LogFile& m_log;
  SessionList& m_sessions;
  LineRule& m_rule;
  const LineRule::Kind m_kind;
  SessionTextTarget& m_target;
  const LineReading& m_reading;
  OrderedTexts m_texts;

  std::vector<std::uint32_t> m_order;  ///< in which sessions begin; empty where it is that in which they are asked for
  std::size_t m_begun = 0;             ///< so many sessions, in that order
  LogPosition m_nextBegin = kNever;    ///< where the next one begins
  std::size_t m_underWay = 0;          ///< sessions begun and not finished

  NumberTable m_table;
  Pool<Number> m_numbers;
  Pool<Group> m_groups;
  std::vector<std::uint32_t> m_all;   ///< groups
  std::vector<std::uint32_t> m_next;  ///< the session after each in its group
  std::vector<Newcomer> m_newcomers;  ///< in the order in which they begin
  PendingSessions m_pending;

  // The line under way
  std::vector<SessionId> m_touched;                              ///< numbers in it that have sessions
  std::vector<std::pair<SessionId, std::uint32_t>> m_connected;  ///< sessions that waited for it
  LogPosition m_serverStart = 0;                                 ///< the last in it; 0: none
  LogLine m_line;
  bool m_hasLineText = false;
  std::string m_lineScratch;
  std::string m_scratch;
  std::string m_before;
  std::string m_after;
  std::vector<PendingSessions::Entry> m_taken;

  // What the rule looks at
  std::uint32_t m_takers = 0;  ///< the first of a chain of sessions
  std::uint32_t m_takerCount = 0;

  LogPosition m_readTo = 0;
  bool m_goOn = true;
  Status m_status;
  std::unique_ptr<LogBlock> m_block;
  std::optional<NumberScan> m_scan;
  std::optional<BlockReader> m_reader;  ///< last, so that its thread has ended before what it looks at is gone
};

}  // namespace

Status readSessionLines(const LogFile& log, SessionList& sessions, LineRule& rule, SessionTextTarget& target,
                        const LineReading& reading) {
  return Pass(log, sessions, rule, target, reading).run();
}

}  // namespace quorvel
