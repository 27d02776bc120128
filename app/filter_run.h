// Runs the filter of the settings on sessions.
#pragma once

#include <cstdint>

#include "app/command_context.h"
#include "classic/filter/results_file.h"
#include "classic/lines/session_lines.h"
#include "log/log_file.h"

namespace quorvel {

// Both run the command filter when one of its four options in the settings is 1, the entire-session filter otherwise.
// They run the interface while they work; the Stop flag ends the run and is cleared. The filter window is emptied
// first, and tells at the end when the command filter left it empty.

/// What a run did.
struct FilterOutcome {
  Status read;  ///< what kept the log from being read to the end
  std::uint64_t sessions = 0;
  std::uint64_t lines = 0;
  bool wasStopped = false;  ///< before all was written
};

/// Shows the lines of one session in the filter window, a long text in pieces with yields between them.
FilterOutcome filterIntoWindow(CommandContext& context, const LogFile& log, const UserAct& session);

/// Adds a block for each session to results, which is flushed whenever the interface runs, and moves the progress bar
/// along the log. A failing write ends the run, see results.status(). The last session's lines go to the filter's
/// working file as well.
FilterOutcome filterIntoFile(CommandContext& context, const LogFile& log, SessionList& sessions, ResultsFile& results);

}  // namespace quorvel
