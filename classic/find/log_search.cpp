#include "classic/find/log_search.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <string_view>
#include <utility>

namespace quorvel {
namespace {

constexpr LogPosition kSearchBlock = 4000;
constexpr LogPosition kAnywhere = std::numeric_limits<LogPosition>::max();
/// From the ")" of a session number back to the first byte of the number, or of the "- " in front of it.
constexpr LogPosition kBackToNumber = kSessionNumberLength - 1;
constexpr LogPosition kBackToDash = kBackToNumber + 2;

/// In a User mark's detail: the rest is the position of its logon line.
constexpr std::uint64_t kLogonSeen = std::uint64_t{1} << 63;

constexpr unsigned bit(MarkKind kind) {
  return 1u << static_cast<unsigned>(kind);
}

struct EventText {
  unsigned kinds;           ///< the marks that are a hit
  bool hasDash;             ///< the text starts with "- "
  std::string_view behind;  ///< the text behind the number
};

/// In the order of Event.
constexpr std::array<EventText, 11> kEventTexts = {{
    {bit(MarkKind::User), false, " USER "},
    {bit(MarkKind::Quit), false, " QUIT"},
    {bit(MarkKind::Close) | bit(MarkKind::CloseDash), false, " Closing connection"},
    {bit(MarkKind::CloseDash), true, " Closing connection"},
    {bit(MarkKind::ConnectDash), true, " Connected to "},
    {bit(MarkKind::PasswordIncorrect), true, " 530 Not logged in - password incorrect"},
    {bit(MarkKind::IncorrectPassword), true, " 530 Incorrect password"},
    {bit(MarkKind::UnauthorizedIp), true, " 530 Not logged in - unauthorized IP address"},
    {bit(MarkKind::NoHomeDirectory), true, " 530 Not logged in - cannot find home directory"},
    {bit(MarkKind::PasswordIncorrect) | bit(MarkKind::IncorrectPassword) | bit(MarkKind::UnauthorizedIp) |
         bit(MarkKind::NoHomeDirectory) | bit(MarkKind::Other530),
     true, " 530"},
    {bit(MarkKind::Anonymous), true, " anonymous logged in"},
}};

std::size_t lengthOf(const EventText& text) {
  return static_cast<std::size_t>(kSessionNumberLength) + (text.hasDash ? 2 : 0) + text.behind.size();
}

}  // namespace

LogSearch::LogSearch(const LogFile& log, Options options)
    : m_log(log),
      m_options(std::move(options)),
      m_stream(log, m_options.blockSize, findMarks, [this](const LogBlock& block) { return takeMarks(block); }) {}

bool LogSearch::FindForward(LogPosition start) {
  while (true) {
    const MarkNumber next = m_marks.connectAfter(m_session.number);
    if (next == 0) {
      if (m_stream.readMore()) continue;
      return false;
    }
    const LogPosition position = m_marks.position(next);
    m_session = {next, position, m_marks.kind(next) == MarkKind::ConnectDash};
    if (position < start) continue;
    m_marks.dropBefore(next);
    while (!m_serverStarts.empty() && m_serverStarts.front() < position)
      m_serverStarts.pop_front();
    return true;
  }
}

SessionEnd LogSearch::FindSessionEnd() {
  if (isQuietAhead() && m_serverStarts.empty()) return {};
  while (true) {
    const MarkNumber mark = firstOf(bit(MarkKind::CloseDash), kAnywhere);
    const LogPosition close = mark != 0 ? m_marks.position(mark) - kBackToDash : 0;
    const LogPosition start = m_serverStarts.empty() ? 0 : m_serverStarts.front();
    if (start != 0 && (close == 0 || start < close)) return {start, true};
    if (close != 0 || !m_stream.readMore()) return {close, false};
  }
}

LogPosition LogSearch::findEvent(Event event, LogPosition limit, LogPosition start) {
  const EventText& text = kEventTexts[static_cast<std::size_t>(event)];
  if (m_stream.isAtEnd() && !isAhead(text.kinds)) return 0;
  const LogPosition back = text.hasDash ? kBackToDash : kBackToNumber;
  const LogPosition last = lastAccepted(start, limit, lengthOf(text));
  readTo(last + back);
  const MarkNumber hit = firstOf(text.kinds, last + back);
  return hit != 0 ? m_marks.position(hit) - back : 0;
}

LogPosition LogSearch::FindLogonLine(std::size_t nameLength, LogPosition limit) {
  constexpr std::string_view kAround = "-  User  logged in";
  if (nameLength > kLongestSearchedName) return 0;  // fits into no block
  const std::size_t length = kAround.size() + kSessionNumberLength + nameLength;
  const LogPosition furthest = lastAccepted(m_session.position, limit, length) + kBackToDash;
  readTo(furthest);
  const MarkNumber user = firstOf(bit(MarkKind::User), kAnywhere);
  const std::uint64_t logon = user != 0 ? m_marks.detail(user) : 0;
  const auto hit = static_cast<LogPosition>(logon & ~kLogonSeen);
  return (logon & kLogonSeen) != 0 && hit <= furthest ? hit - kBackToDash : 0;
}

bool LogSearch::takeMarks(const LogBlock& block) {
  NamesInLine names;
  for (std::size_t index = 0; index < block.findings.size();) {
    const LogMark mark = takeMark(block.findings, index);
    m_lastOfKind[static_cast<std::size_t>(mark.kind)] = mark.position;
    if (mark.kind == MarkKind::ServerStart) {
      m_serverStarts.push_back(mark.position);
      continue;
    }
    if (mark.kind != MarkKind::Connect && mark.kind != MarkKind::ConnectDash) m_lastEvent = mark.position;
    const char* const name = block.data() + (mark.position - block.first) + kForwardToName;
    if (mark.kind == MarkKind::LoggedIn) {
      takeLogon(mark, name, names);
    } else if (const MarkNumber number = m_marks.append(mark); number != 0 && mark.kind == MarkKind::User) {
      expectLogon(number, mark, name, names);
    }
  }
  m_wasStopped = m_options.keepGoing && !m_options.keepGoing(m_stream.readTo());
  return !m_wasStopped;
}

void LogSearch::readTo(LogPosition position) {
  while (m_stream.readTo() < position && m_stream.readMore()) {
  }
}

/// The last position at which a hit is accepted: the last block read ends with a text that starts there.
LogPosition LogSearch::lastAccepted(LogPosition start, LogPosition limit, std::size_t textLength) const {
  const LogPosition step = kSearchBlock - static_cast<LogPosition>(textLength);
  if (step <= 0) return start + step;  // the text fits the first block at its start, or no block at all
  const LogPosition reach = std::min(limit, m_log.length() - 1) - start;
  const LogPosition moreBlocks = reach > 0 ? reach / step : 0;
  return start + (moreBlocks + 1) * step;
}

/// Whether any session has such a mark ahead: often one look at all marks saves a walk along a number's.
bool LogSearch::isAhead(unsigned kinds) const {
  for (; kinds != 0; kinds &= kinds - 1) {
    if (m_lastOfKind[static_cast<std::size_t>(std::countr_zero(kinds))] > m_session.position) return true;
  }
  return false;
}

/// A session's name stands behind its first User mark, and a line that logs on is a User mark itself: only lines from
/// that mark on can log the name on.
void LogSearch::expectLogon(MarkNumber user, const LogMark& mark, const char* name, NamesInLine& names) {
  if (mark.detail == 0) return;
  if (m_expected.size() + m_longNames.size() >= m_purgeExpectedAt) {
    std::erase_if(m_expected, [this](const auto& entry) { return entry.second < m_session.number; });
    std::erase_if(m_longNames, [this](const auto& entry) { return entry.second.last < m_session.number; });
    m_purgeExpectedAt = std::max<std::size_t>(1024, 2 * (m_expected.size() + m_longNames.size()));
  }
  std::uint64_t hash = mark.detail;
  if (hash == kHoldsLoggedIn) {
    names.lookAt(name);
    hash = names.hash(names.lineEnd());
    LongNames& alike = m_longNames[logonKey(mark.id, names.hash(names.loggedIn(0)))];
    alike = {alike.counts | LongNames::bitOf(names.loggedInCount()), user};
  }
  MarkNumber& last = m_expected[logonKey(mark.id, hash)];
  m_marks.setDetail(user, last);
  last = user;
}

/// Each " logged in" in the line may be the end of it: of a name that holds it n times, the one behind n others.
void LogSearch::takeLogon(const LogMark& mark, const char* name, NamesInLine& names) {
  answerLogon(logonKey(mark.id, mark.detail), mark.position);
  if (m_longNames.empty()) return;
  const auto alike = m_longNames.find(logonKey(mark.id, mark.detail));
  if (alike == m_longNames.end()) return;
  names.lookAt(name);
  const std::uint64_t counts = alike->second.counts;
  for (std::size_t count = 1; counts >= LongNames::bitOf(count); ++count) {
    const char* const end = names.loggedIn(count);
    if (end == nullptr) return;
    if ((counts & LongNames::bitOf(count)) != 0) answerLogon(logonKey(mark.id, names.hash(end)), mark.position);
  }
}

void LogSearch::answerLogon(std::uint64_t key, LogPosition position) {
  const auto found = m_expected.find(key);
  if (found == m_expected.end()) return;
  for (MarkNumber user = found->second; user != 0 && user >= m_session.number;) {
    const auto earlier = static_cast<MarkNumber>(m_marks.detail(user));
    m_marks.setDetail(user, kLogonSeen | static_cast<std::uint64_t>(position));
    user = earlier;
  }
  m_expected.erase(found);
}

MarkNumber LogSearch::firstOf(unsigned kinds, LogPosition furthest) {
  constexpr int kFarWalk = 64;
  if (!isAhead(kinds)) return 0;
  const MarkNumber first = m_marks.nextOfSession(m_session.number);
  if (first == 0 || m_marks.position(first) > furthest) return 0;
  MarkNumber passed = m_session.number;
  if (!m_passed.empty()) {
    const auto known = m_passed.find({sessionId(), kinds});
    if (known != m_passed.end()) passed = std::max(passed, known->second);
  }
  int steps = 0;
  MarkNumber next = m_marks.nextOfSession(passed);
  for (; next != 0 && m_marks.position(next) <= furthest; next = m_marks.nextOfSession(next), ++steps) {
    if ((bit(m_marks.kind(next)) & kinds) != 0) break;
    passed = next;
  }
  if (steps > kFarWalk) notePassed(kinds, passed);
  return next != 0 && m_marks.position(next) <= furthest ? next : 0;
}

void LogSearch::notePassed(unsigned kinds, MarkNumber passed) {
  if (m_passed.size() >= m_purgePassedAt) {
    std::erase_if(m_passed, [this](const auto& entry) { return entry.second < m_session.number; });
    m_purgePassedAt = std::max<std::size_t>(4096, 2 * m_passed.size());
  }
  m_passed[{sessionId(), kinds}] = passed;
}

SessionId LogSearch::sessionId() {
  return sessionIdAt(&m_stream.window().text(m_session.position - kBackToNumber, kSessionNumberLength).back());
}

}  // namespace quorvel
