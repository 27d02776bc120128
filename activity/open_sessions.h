// The table of sessions while it is made, and what is remembered of those that something may still happen to.
#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "activity/activity.h"
#include "activity/session_state.h"

namespace quorvel {

/// Rows of all sessions; states of as many as a server has open at a time. Where more are open, what is remembered of
/// the least recently used is let go: their rows stand, and a later line of theirs goes on from the row.
class OpenSessions {
 public:
  /// A new session. The state is valid until the next call that is not const.
  SessionState& begin(const SessionRow& row);
  /// The state of a session, made from its row where it was let go.
  SessionState& state(RowNumber session);
  /// A session's row as it is now.
  [[nodiscard]] const SessionRow& row(RowNumber session) const;
  /// A row of a session that needs no state, to change it.
  [[nodiscard]] SessionRow& editRow(RowNumber session);
  [[nodiscard]] bool hasState(RowNumber session) const { return m_stateOf[session] != 0; }
  [[nodiscard]] std::size_t size() const { return m_rows.size(); }

  /// Counts the texts of a state anew, and lets others go where there are too many.
  void count(SessionState& state);
  /// Writes the row and forgets the rest.
  void letGo(SessionState& state);
  /// Sessions that have a state, in table order.
  [[nodiscard]] std::vector<RowNumber> withState() const;
  /// Transfers that still waited for their reply when they were let go.
  [[nodiscard]] std::uint64_t forgottenTransfers() const { return m_forgottenTransfers; }

  [[nodiscard]] Rows<SessionRow> snapshot();

 private:
  static constexpr std::size_t kMostStates = 65536;
  static constexpr std::size_t kMostTextBytes = 16 * 1024 * 1024;

  SessionState& freeState();
  void letLeastRecentGo(const SessionState* keep);

  Rows<SessionRow> m_rows;
  std::vector<std::uint32_t> m_stateOf;  ///< by session: index in m_states + 1; 0: none
  std::deque<SessionState> m_states;
  std::vector<std::uint32_t> m_free;  ///< indexes in m_states
  std::size_t m_hand = 0;             ///< goes round m_states, looking for the least recently used
  std::size_t m_textBytes = 0;
  std::uint64_t m_forgottenTransfers = 0;
};

}  // namespace quorvel
