// Choosing the log that all other commands work on.
#pragma once

#include <filesystem>
#include <string_view>

#include "app/command_context.h"

namespace quorvel {

/// The name of a log type as status panel 2 shows it; empty for None.
[[nodiscard]] std::string_view logTypeName(LogType type);

/// Makes a log the open one and changes no setting. Nothing is left of the one before: the users file is deleted, the
/// tree, both text boxes, the logons in the status bar and the current session are emptied, and what needs sessions is
/// disabled. title is the name to show, in Windows-1252. The log itself is not touched.
void useLog(CommandContext& context, const std::filesystem::path& path, std::string_view title, LogType type);

/// Opens a log whose name is known, e.g. a file dropped on the window: its folder becomes the one the open dialog
/// starts in, its type is the one last chosen. What is no readable file is refused with a message and nothing changes.
/// Does nothing while a command runs.
void openLogFile(CommandContext& context, const std::filesystem::path& path);

/// Asks for a log and opens it; the log type follows from the filter index of the dialog. Cancelling changes nothing.
/// Does nothing while a command runs.
void chooseLogFile(CommandContext& context);

}  // namespace quorvel
