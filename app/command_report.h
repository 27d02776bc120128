// How a command tells what it could not do.
#pragma once

#include <filesystem>
#include <string_view>

#include "app/command_context.h"

namespace quorvel {

/// One message; in an unattended run it also makes the run a failed one.
void reportFailure(CommandContext& context, std::string_view text);

/// Puts the window at rest after a command that ran out of memory, and says so.
void reportOutOfMemory(CommandContext& context);

/// Keeps results from being written over what the program needs: true, after a message, when path is the log, or the
/// settings file or a working file that the commands read or delete.
[[nodiscard]] bool refusesResultsFile(CommandContext& context, const std::filesystem::path& path);

}  // namespace quorvel
