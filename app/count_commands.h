// The count commands: count the transfers of chosen sessions and show the result, or add it to the batch output file.
#pragma once

#include <string_view>

#include "app/command_context.h"

namespace quorvel {

// The commands do nothing while another one runs or no log is chosen. In an unattended run the batch's address or name
// stands for the current session's, and the result goes to the batch output file under the batch's description.

void countAllTransfers(CommandContext& context);
/// The sessions of the ticked tree nodes.
void countSelectedSessions(CommandContext& context);
void countIPTransfers(CommandContext& context);
void countUsersTransfers(CommandContext& context);
/// The current session alone.
void countSessionsTransfers(CommandContext& context);

/// Adds a counter result, under its caption in upper case, to the filter window. Possible while the result is shown.
void pasteCounterResult(CommandContext& context, std::string_view caption, std::string_view text);

}  // namespace quorvel
