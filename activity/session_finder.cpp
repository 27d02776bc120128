#include "activity/session_finder.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "activity/text_hash.h"

namespace quorvel {
namespace {

/// Numbers up to this many digits are found by index.
constexpr std::size_t kMostDigits = 6;
/// As high as processes are numbered.
constexpr std::uint32_t kMostProcess = 1u << 22;
/// Between the end of one transfer and the start of the next of one session.
constexpr std::int64_t kLongestPause = 30 * 60;

std::optional<std::uint32_t> numberOf(std::string_view key) {
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), number);
  if (error != std::errc() || end != key.data() + key.size()) return std::nullopt;
  return number;
}

/// Whose session a line tells of; a name that was refused is nobody's.
std::string_view nameIn(const Event& event) {
  return event.kind == EventKind::Refused ? std::string_view{} : event.user;
}

/// The place for number in a table that grows to hold it.
RowNumber& placeIn(std::vector<RowNumber>& table, std::uint32_t number, std::size_t most) {
  if (number >= table.size()) table.resize(std::min(most, std::max<std::size_t>(2 * table.size(), number + 1)), 0);
  return table[number];
}

}  // namespace

SessionFinder::SessionFinder(const GrammarTraits& traits, const OpenSessions& sessions, const TextPool& texts)
    : m_rule(traits.sessions),
      m_neighbours(traits.neighbours),
      m_sessions(sessions),
      m_texts(texts),
      m_first(static_cast<RowNumber>(sessions.size())),
      m_seed(randomSeed()) {}

bool SessionFinder::hasSession(const Event& event) const {
  if (!event.key.empty()) return true;
  return m_rule != SessionRule::ByProcessNeighbours && (!event.user.empty() || !event.address.empty());
}

SessionRule SessionFinder::ruleFor(const Event& event) const {
  if (m_rule == SessionRule::ByProcessNeighbours) return m_rule;
  return event.key.empty() ? SessionRule::ByUserAndAddress : SessionRule::ByKey;
}

RowNumber SessionFinder::find(const Event& event) {
  switch (ruleFor(event)) {
    case SessionRule::ByKey:
      return findKey(event);
    case SessionRule::ByUserAndAddress:
      return event.kind == EventKind::Connect ? kNoRow : findUserAndAddress(event);
    case SessionRule::ByProcessNeighbours:
      break;
  }
  const RowNumber session = event.kind == EventKind::Connect ? kNoRow : findNeighbours(event);
  if (session != kNoRow) belongs(event, session);
  return session;
}

void SessionFinder::belongs(const Event& event, RowNumber session) {
  const SessionRule rule = ruleFor(event);
  if (rule == SessionRule::ByProcessNeighbours) {
    const auto process = numberOf(event.key);
    if (process && *process <= kMostProcess) placeIn(m_numbers[0], *process, kMostProcess + 1) = session + 1;
    return;
  }
  const bool isByKey = rule == SessionRule::ByKey;
  if (RowNumber* const place = isByKey ? shortNumber(event.key) : nullptr) {
    *place = session + 1;
    return;
  }
  if ((m_used + 1) * 4 > m_slots.size() * 3) grow();
  Slot& slot = slotOf(isByKey ? hashOf(event.key) : hashOf(nameIn(event), event.address));
  if (slot.session == kNoRow) ++m_used;
  slot.session = session;
}

void SessionFinder::forget() {
  m_first = static_cast<RowNumber>(m_sessions.size());
}

RowNumber SessionFinder::findKey(const Event& event) {
  if (const RowNumber* const place = shortNumber(event.key)) return *place == 0 ? kNoRow : current(*place - 1);
  return m_slots.empty() ? kNoRow : current(slotOf(hashOf(event.key)).session);
}

bool SessionFinder::goesOn(RowNumber session, const Event& event) const {
  if (session == kNoRow || current(session) == kNoRow) return false;
  const SessionRow& row = m_sessions.row(session);
  if (row.end != SessionEnd::Open) return false;
  if (row.ended == kNoTime || event.time == kNoTime) return true;
  return std::int64_t{event.time} - std::max<std::int64_t>(event.seconds, 0) <= row.ended + kLongestPause;
}

RowNumber SessionFinder::findUserAndAddress(const Event& event) {
  if (m_slots.empty()) return kNoRow;
  const std::string_view name = nameIn(event);
  const RowNumber session = slotOf(hashOf(name, event.address)).session;
  if (goesOn(session, event)) return session;
  // What happened before the log-on belongs to the first who logs on from there.
  if (name.empty()) return kNoRow;
  const RowNumber nameless = slotOf(hashOf({}, event.address)).session;
  if (!goesOn(nameless, event) || m_sessions.row(nameless).outcome == LogonResult::LoggedOn) return kNoRow;
  belongs(event, nameless);
  return nameless;
}

RowNumber SessionFinder::findNeighbours(const Event& event) const {
  const auto process = numberOf(event.key);
  const auto sessionOf = [this, &process](std::int64_t distance) {
    const std::int64_t number = std::int64_t{process.value_or(0)} + distance;
    const auto& table = m_numbers[0];
    if (!process || number < 0 || number >= static_cast<std::int64_t>(table.size())) return kNoRow;
    const RowNumber entry = table[static_cast<std::size_t>(number)];
    return entry == 0 ? kNoRow : current(entry - 1);
  };
  const auto fits = [this, &event](RowNumber session) {
    if (session == kNoRow) return false;
    const SessionRow& row = m_sessions.row(session);
    return (event.address.empty() || row.address == kNoText || m_texts[row.address] == event.address) &&
           (event.user.empty() || row.user == kNoText || m_texts[row.user] == event.user ||
            row.outcome != LogonResult::LoggedOn);
  };
  // The process that logs on stands in front of the one that told of the connection.
  const bool isLogon = event.kind == EventKind::LoggedOn || event.kind == EventKind::Refused;
  const auto isOver = [this](RowNumber session) { return m_sessions.row(session).end != SessionEnd::Open; };
  const auto isOnlyOneLine = [this](RowNumber session) { return m_sessions.row(session).lines == 1; };
  const auto hasLogon = [this](RowNumber session) { return m_sessions.row(session).outcome == LogonResult::LoggedOn; };
  if (const RowNumber connected = sessionOf(1);
      (event.user.empty() || isLogon) && fits(connected) &&
      (isOnlyOneLine(connected) || (isLogon && !hasLogon(connected) && !isOver(connected))))
    return connected;
  if (const RowNumber same = sessionOf(0); fits(same) && !(isLogon && isOver(same))) return same;
  if (event.user.empty()) return kNoRow;
  for (int before = 1; before <= m_neighbours; ++before) {
    const RowNumber session = sessionOf(-before);
    if (!fits(session) || m_texts[m_sessions.row(session).user] != event.user) continue;
    // Who logs on where another process just did is the same; else it is the next session.
    if (isLogon && !isOnlyOneLine(session)) continue;
    if (event.kind == EventKind::Close || !isOver(session)) return session;
  }
  return kNoRow;
}

RowNumber* SessionFinder::shortNumber(std::string_view key) {
  if (key.size() > kMostDigits || key.empty()) return nullptr;
  std::uint32_t number = 0;
  for (const char c : key) {
    if (c < '0' || c > '9') return nullptr;
    number = number * 10 + static_cast<std::uint32_t>(c - '0');
  }
  return &placeIn(m_numbers[key.size()], number, 1000000);
}

std::uint64_t SessionFinder::hashOf(std::string_view key) const {
  return textHash(key, m_seed);
}

std::uint64_t SessionFinder::hashOf(std::string_view user, std::string_view address) const {
  return textHash(user, ~m_seed ^ textHash(address, m_seed));
}

SessionFinder::Slot& SessionFinder::slotOf(std::uint64_t hash) {
  const std::size_t mask = m_slots.size() - 1;
  for (std::size_t at = hash & mask;; at = (at + 1) & mask) {
    Slot& slot = m_slots[at];
    if (slot.session != kNoRow && slot.hash != hash) continue;
    slot.hash = hash;
    return slot;
  }
}

void SessionFinder::grow() {
  std::vector<Slot> old(m_slots.empty() ? 1024 : m_slots.size() * 2);
  old.swap(m_slots);
  const std::size_t mask = m_slots.size() - 1;
  for (const Slot& slot : old) {
    if (slot.session == kNoRow) continue;
    std::size_t at = slot.hash & mask;
    while (m_slots[at].session != kNoRow)
      at = (at + 1) & mask;
    m_slots[at] = slot;
  }
}

}  // namespace quorvel
