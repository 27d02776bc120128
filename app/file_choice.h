// Asking the user for a file to save to.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "app/command_context.h"

namespace quorvel {

/// Text of the message after a file dialog failed: "Error", the number, " selecting file." and the description.
[[nodiscard]] std::string fileDialogErrorText(const FileChoice& choice);

/// Shows the save dialog. Empty when the user cancelled, when no name was chosen, and after a message when the dialog
/// failed or a file the program itself needs was chosen, above all the log.
[[nodiscard]] std::optional<std::filesystem::path> chooseSavePath(CommandContext& context, const FileRequest& request);

/// The same, starting in the folder of the last file saved (the program folder at first) and remembering the new one.
/// filter as in FileRequest.
[[nodiscard]] std::optional<std::filesystem::path> chooseSavePathInLastFolder(CommandContext& context,
                                                                              std::string_view filter);

}  // namespace quorvel
