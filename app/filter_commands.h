// The filter commands: copy the log lines of chosen sessions into the filter window or a results file.
#pragma once

#include "app/command_context.h"

namespace quorvel {

/// Shows in status panel 4 which options are on: "A" auto filter, "T" transfers, "D" deletes, "M" MDTM, "S" SITE.
void writeFilterOptionsHeader(CommandContext& context);

// The commands below do nothing while another one runs or no log is chosen.

/// Shows the lines of the current session in the filter window.
void filterSession(CommandContext& context);
/// The same as part of another command, which keeps commands from nesting.
void filterCurrentSession(CommandContext& context);

// To a file the user chooses; in an unattended run to the batch output file, with the batch's address or name in place
// of the current session's. AppendWhenFilter 0 deletes the file first. The current session ends as the last record
// read.
void filterAll(CommandContext& context);
void filterIP(CommandContext& context);
void filterUser(CommandContext& context);
/// The sessions of the ticked tree nodes.
void filterSelected(CommandContext& context);

}  // namespace quorvel
