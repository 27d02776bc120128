// Finding the sessions of the open log.
#pragma once

#include "app/command_context.h"

namespace quorvel {

/// Scans the open log, writes a record per session into a new users file, shows progress as it goes and builds the
/// tree at the end. Stop ends the scan after the session in hand: its records stay, the tree is not built. Does
/// nothing without a log, and while another command runs. In an unattended run a log that cannot be read is told in
/// one sentence and sets batchFailed.
void findUsers(CommandContext& context);

}  // namespace quorvel
