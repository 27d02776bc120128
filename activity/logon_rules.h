// Log-ons: what USER, PASS, their replies and the server's sentences mean together. One row an attempt.
#pragma once

#include "activity/session_state.h"
#include "activity/tables_in_work.h"
#include "grammar/event.h"

namespace quorvel {

/// A client gave a name.
void giveUser(TablesInWork& tables, SessionState& session, const Event& command);
/// The final reply to USER or PASS.
void replyToLogon(TablesInWork& tables, SessionState& session, const Event& reply);
/// A LoggedOn or Refused sentence; false where it does not fit what is going on.
[[nodiscard]] bool tellLogonSentence(TablesInWork& tables, SessionState& session, const Event& sentence);

}  // namespace quorvel
