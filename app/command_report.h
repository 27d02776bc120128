// How a command tells what it could not do.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "app/command_context.h"

namespace quorvel {

/// One message; in an unattended run it also makes the run a failed one.
void reportFailure(CommandContext& context, std::string_view text);
/// The same for results that could not be written. Where their reader has gone, nothing more of the run can be.
void reportLostResults(CommandContext& context, const Error& error);

/// Why no results can be written into path: it is the log, a file that the program itself needs, or, in a window that
/// must not wait for a reader, no plain file. Empty where they can.
[[nodiscard]] std::string whyNoResultsFile(const CommandContext& context, const std::filesystem::path& path);
/// Whether they cannot; then after a message.
[[nodiscard]] bool refusesResultsFile(CommandContext& context, const std::filesystem::path& path);

}  // namespace quorvel
