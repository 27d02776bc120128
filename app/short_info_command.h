// The command that saves a table of all sessions found.
#pragma once

#include "app/command_context.h"

namespace quorvel {

/// Asks for a file and writes one line per session into it. An existing file is replaced, but not before the log
/// and the users file could be opened. Does nothing without a log. Stop leaves a table that is complete up to the last
/// session written.
void SaveShortInfoCommand(CommandContext& context);

}  // namespace quorvel
