#include "activity/open_sessions.h"

#include <algorithm>

namespace quorvel {

SessionState& OpenSessions::begin(const SessionRow& row) {
  SessionState& state = freeState();
  state.row = row;
  state.number = static_cast<RowNumber>(m_rows.size());
  m_rows.append(row);
  m_stateOf.push_back(state.index + 1);
  return state;
}

SessionState& OpenSessions::state(RowNumber session) {
  if (const std::uint32_t index = m_stateOf[session]; index != 0) {
    m_states[index - 1].isRecent = true;
    return m_states[index - 1];
  }
  SessionState& state = freeState();
  state.row = m_rows[session];
  state.number = session;
  state.hasReplies = true;
  if (state.row.outcome == LogonResult::LoggedOn && !state.isEnded()) state.loggedOnAs = state.row.user;
  m_stateOf[session] = state.index + 1;
  return state;
}

const SessionRow& OpenSessions::row(RowNumber session) const {
  const std::uint32_t index = m_stateOf[session];
  return index != 0 ? m_states[index - 1].row : m_rows[session];
}

SessionRow& OpenSessions::editRow(RowNumber session) {
  const std::uint32_t index = m_stateOf[session];
  return index != 0 ? m_states[index - 1].row : m_rows.edit(session);
}

void OpenSessions::count(SessionState& state) {
  const std::size_t bytes = state.textBytes();
  m_textBytes += bytes - state.counted;
  state.counted = bytes;
  while (m_textBytes > kMostTextBytes && m_states.size() - m_free.size() > 1)
    letLeastRecentGo(&state);
}

void OpenSessions::letGo(SessionState& state) {
  m_rows.edit(state.number) = state.row;
  m_stateOf[state.number] = 0;
  m_textBytes -= state.counted;
  const std::uint32_t index = state.index;
  state = SessionState();
  state.index = index;
  m_free.push_back(index);
}

std::vector<RowNumber> OpenSessions::withState() const {
  std::vector<RowNumber> sessions;
  for (const SessionState& state : m_states)
    if (state.number != kNoRow) sessions.push_back(state.number);
  std::sort(sessions.begin(), sessions.end());
  return sessions;
}

Rows<SessionRow> OpenSessions::snapshot() {
  for (const SessionState& state : m_states)
    if (state.number != kNoRow) m_rows.edit(state.number) = state.row;
  return m_rows.snapshot();
}

SessionState& OpenSessions::freeState() {
  if (m_free.empty() && m_states.size() == kMostStates) letLeastRecentGo(nullptr);
  if (m_free.empty()) {
    m_free.push_back(static_cast<std::uint32_t>(m_states.size()));
    m_states.emplace_back().index = m_free.back();
  }
  SessionState& state = m_states[m_free.back()];
  m_free.pop_back();
  state.isRecent = true;
  return state;
}

void OpenSessions::letLeastRecentGo(const SessionState* keep) {
  for (;; m_hand = (m_hand + 1) % m_states.size()) {
    SessionState& state = m_states[m_hand];
    if (state.number == kNoRow || &state == keep) continue;
    if (!state.isRecent) {
      if (state.transfer.isWaiting && state.transfer.row == kNoRow) ++m_forgottenTransfers;
      letGo(state);
      return;
    }
    state.isRecent = false;
  }
}

}  // namespace quorvel
