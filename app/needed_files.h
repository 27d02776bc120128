// The log and the users file as commands need them: open, or what is wrong with them told.
#pragma once

#include <optional>

#include "app/command_context.h"
#include "classic/find/users_file.h"
#include "log/log_file.h"

namespace quorvel {

/// The open log. Empty after a message with the log's name and the reason.
[[nodiscard]] std::optional<LogFile> openNeededLog(CommandContext& context);

/// The users file. Empty after a message: the one for a lost file where it is missing. Nothing more is told in an
/// unattended run that has failed already, which is why the file is missing.
[[nodiscard]] std::optional<UsersFile> openNeededUsersFile(CommandContext& context);

/// Tells that the users file is gone, and what to do about it.
void reportLostUsersFile(CommandContext& context);

}  // namespace quorvel
