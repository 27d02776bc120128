// Runs the filter of the settings on sessions.
#pragma once

#include "app/command_context.h"
#include "classic/filter/results_file.h"
#include "classic/find/session_lines.h"
#include "log/log_file.h"

namespace quorvel {

// Both run the command filter when one of its four options in the settings is 1, the entire-session filter otherwise.
// They run the interface while they work; the Stop flag ends the run and is cleared. The filter window is emptied
// first, and tells at the end when the command filter left it empty. Returned is what kept the log from being read to
// the end.

/// Shows the lines of one session in the filter window, a long text in pieces with yields between them.
Status filterIntoWindow(CommandContext& context, const LogFile& log, const UserAct& session);

/// Adds a block for each session to results, which is flushed whenever the interface runs, and moves the progress bar
/// along the log. A failing write ends the run, see results.status().
Status filterIntoFile(CommandContext& context, const LogFile& log, const SessionSource& sessions, ResultsFile& results);

}  // namespace quorvel
