// The log lines of chosen sessions of a log in the current shape.
#pragma once

#include "classic/lines/session_lines.h"

namespace quorvel {

/// What readSessionLines() does, for a log in the current shape: a session's lines are those with its number from the
/// line of its Position to that of its LastPosition. The rule is asked for marks without "- "; the line that closes the
/// session is shown to it as a server start, and it need not end there: the server says more.
Status readCurrentLines(const LogFile& log, SessionList& sessions, LineRule& rule, SessionTextTarget& target,
                        const LineReading& reading);

}  // namespace quorvel
