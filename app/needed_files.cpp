#include "app/needed_files.h"

#include <string>
#include <utility>

#include "app/command_report.h"
#include "log/text.h"

namespace quorvel {
namespace {

void reportForeignLog(CommandContext& context, std::string_view server) {
  reportFailure(context,
                pathText(context.state.logPath)
                    .append(": this is a log of ")
                    .append(server)
                    .append("; the session tree and its commands read logs of Serv-U, all others have the pages "
                            "beside it and the commands with names (quorvel --help)."));
}

}  // namespace

std::optional<LogFile> openNeededLog(CommandContext& context) {
  auto log = LogFile::open(context.files, context.state.logPath);
  if (!log.isOk()) {
    reportFailure(context, log.error().sentence());
    return std::nullopt;
  }
  const bool isToldByContent = context.state.logType != LogType::WarFtpd;
  const Result<LogOrigin> origin = isToldByContent ? originOf(log.value()) : LogOrigin();
  if (!origin.isOk()) {
    reportFailure(context, origin.error().sentence());
    return std::nullopt;
  }
  context.state.logShape = origin.value().shape;
  if (origin.value().shape != LogShape::Other) return std::move(log.value());
  const bool wasTold = context.state.batchFlag && context.state.batchFailed;
  if (!wasTold) reportForeignLog(context, origin.value().server);
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
