#include "app/short_info_command.h"

#include <tuple>
#include <utility>

#include "app/command_report.h"
#include "app/file_choice.h"
#include "app/needed_files.h"
#include "classic/find/users_file.h"
#include "classic/tools/short_info.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::string_view kFilter = "Short info on users             (*.txt)|*.txt";

ShortInfoChoice readChoice(const Settings& settings) {
  ShortInfoChoice choice;
  for (std::size_t i = 0; i < kShortInfoColumns.size(); ++i)
    choice.set(i, settings.readFlag(kShortInfoSection, kShortInfoColumns[i].key));
  return choice;
}

/// True when the user wants no more lines.
bool yieldAndAskForStop(CommandContext& context) {
  context.view.yield();
  return std::exchange(context.state.stopFlag, false);
}

Status writeLines(CommandContext& context, UsersFile& users, ShortInfoTable& table) {
  for (std::int32_t number = 1; number <= users.recordCount(); ++number) {
    const UserAct* const record = users.read(number);
    if (record == nullptr) {
      std::ignore = table.flush();
      return Error{ErrorCode::DeviceIoError, context.state.usersFilePath()};
    }
    table.WriteShortInfoLine(*record);
    if (!context.pacer.isDue()) continue;
    if (const Status status = table.flush(); !status.isOk()) return status;
    if (yieldAndAskForStop(context)) break;
  }
  return table.flush();
}

Status writeTable(CommandContext& context, UsersFile& users, const std::filesystem::path& path) {
  auto table = ShortInfoTable::create(context.files, path, readChoice(context.settings));
  if (!table.isOk()) return table.error();
  table.value().WriteShortInfoHeader(context.state.logPath, localNow());
  return writeLines(context, users, table.value());
}

}  // namespace

void SaveShortInfoCommand(CommandContext& context) {
  const CommandGuard guard(context);
  if (!guard || !context.state.hasLog()) return;
  context.state.stopFlag = false;
  const auto path = chooseSavePathInLastFolder(context, kFilter);
  if (!path) return;
  context.view.setStatusPanel(StatusPanel::Text, "Saving " + pathText(*path));
  const bool canReadLog = openNeededLog(context).has_value();  // a table of a log that is gone would name it
  if (auto users = canReadLog ? openNeededUsersFile(context) : std::nullopt) {
    const Status status = writeTable(context, *users, *path);
    if (!status.isOk()) reportFailure(context, status.error().sentence());
  }
  context.view.setStatusPanel(StatusPanel::Text, "Using " + context.state.logTitle);
}

}  // namespace quorvel
