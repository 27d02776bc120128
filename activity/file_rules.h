// Files of FTP sessions: what a command, its reply and the server's sentence about the file mean together. One row an
// action, told by whichever comes first; the other adds what is missing.
#pragma once

#include "activity/session_state.h"
#include "activity/tables_in_work.h"
#include "grammar/event.h"

namespace quorvel {

void takeCommand(TablesInWork& tables, SessionState& session, const Event& command);
void takeReply(TablesInWork& tables, SessionState& session, const Event& reply);
/// A Transfer or FileChange; false where it does not fit what is going on.
[[nodiscard]] bool tellFileSentence(TablesInWork& tables, SessionState& session, const Event& sentence);
/// The session's end: what still waits for its reply failed.
void endTransfers(TablesInWork& tables, SessionState& session, const Event& end, FailureCause cause);

}  // namespace quorvel
