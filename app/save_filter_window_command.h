// Saving what the window shows of a session.
#pragma once

#include "app/command_context.h"

namespace quorvel {

/// Asks for a file and writes the user-info box and the filter window into it, under a head that names the log. The
/// file is replaced as a whole: when that fails, a message names it and what it held before stays. Does nothing while
/// another command runs.
void saveFilterWindow(CommandContext& context);

}  // namespace quorvel
