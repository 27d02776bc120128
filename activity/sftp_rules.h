// Files of SFTP sessions: what requests and their answers mean together.
#pragma once

#include "activity/session_state.h"
#include "activity/tables_in_work.h"
#include "grammar/event.h"

namespace quorvel {

void takeRequest(SessionState& session, const Event& request);
/// The line behind a request to open a file is no answer: it was opened.
void forgetOpening(SessionState& session);
void takeAnswer(TablesInWork& tables, SessionState& session, const Event& answer);
/// The session's end: files of which something was read or written, and that were not closed, failed.
void endSftpTransfers(TablesInWork& tables, SessionState& session, const Event& end, FailureCause cause);

}  // namespace quorvel
