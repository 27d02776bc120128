#include "app/needed_files.h"

#include <utility>

#include "app/command_report.h"

namespace quorvel {

std::optional<LogFile> openNeededLog(CommandContext& context) {
  auto log = LogFile::open(context.files, context.state.logPath);
  if (log.isOk()) return std::move(log.value());
  reportFailure(context, log.error().sentence());
  return std::nullopt;
}

std::optional<UsersFile> openNeededUsersFile(CommandContext& context) {
  auto users = UsersFile::open(context.files, context.state.usersFilePath());
  if (users.isOk()) return std::move(users.value());
  if (context.state.batchFlag && context.state.batchFailed) return std::nullopt;
  if (users.error().code == ErrorCode::FileNotFound) {
    reportLostUsersFile(context);
  } else {
    reportFailure(context, users.error().sentence());
  }
  return std::nullopt;
}

void reportLostUsersFile(CommandContext& context) {
  reportFailure(context,
                "Lost file: users.qva\r\n"
                "This might happen if you tried to run multiple instanses of Quorvel analyzer\r\n"
                "Please run \"Find users in logfile\" in the \"Command\" menu or press Ctrl-U again");
}

}  // namespace quorvel
