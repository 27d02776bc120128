#include "app/open_log_command.h"

#include <string>
#include <system_error>

#include "app/command_report.h"
#include "app/file_choice.h"
#include "app/menu_groups.h"
#include "app/tree_commands.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::string_view kFilter = "Serv-U log file                    (*.*)|*.*";

/// The log type of a filter index; whatever else stands in the settings counts as the first.
LogType logTypeOf(int filterIndex) {
  const bool isKnown =
      filterIndex >= static_cast<int>(LogType::ServU) && filterIndex <= static_cast<int>(LogType::WarFtpd);
  return isKnown ? static_cast<LogType>(filterIndex) : LogType::ServU;
}

LogType lastLogType(const Settings& settings) {
  return logTypeOf(settings.readNumber("MAIN", "LastOpenFileType"));
}

/// The full path less the file's title and the separator in front of it.
std::string folderOf(const std::filesystem::path& path) {
  std::string folder = pathBytes(path);
  folder.resize(folder.size() - pathBytes(path.filename()).size() - 1);
  return folder;
}

/// Empty when the file can be read.
std::string whyNotReadable(FileSystem& files, const std::filesystem::path& path) {
  if (!files.Exist(path)) return pathText(path) + ": There is no such file.";
  const auto file = files.open(path, OpenMode::Read);
  return file.isOk() ? std::string() : file.error().sentence();
}

void openLog(CommandContext& context, const std::filesystem::path& chosen, LogType type) {
  std::error_code failed;
  const auto absolute = std::filesystem::absolute(chosen, failed);
  const auto& path = failed ? chosen : absolute;
  if (const std::string reason = whyNotReadable(context.files, path); !reason.empty())
    return reportFailure(context, reason);
  useLog(context, path, pathText(path.filename()), type);
  context.settings.WriteSetting("Main", "LastOpenPath", folderOf(path));
  context.settings.WriteSetting("MAIN", "LastOpenFileType", std::to_string(static_cast<int>(type)));
  context.view.enableMenuItem(MenuItem::mnuCountAllTransfers, true);  // needs no sessions
}

/// The sessions of the log before, wherever they are kept or shown.
void forgetSessions(CommandContext& context) {
  (void)context.files.remove(context.state.usersFilePath());
  clearSessionTree(context);
  context.state.currentSession = {};
  context.view.setUserInfo({});
  context.view.setFilterText({});
  context.view.setStatusPanel(StatusPanel::Logons, {});
  EnDis::disableSessionMenus(context.view);
}

FileRequest logRequest(const CommandContext& context) {
  FileRequest request;
  request.filter = kFilter;
  request.filterIndex = static_cast<int>(lastLogType(context.settings));
  request.folder = pathFromBytes(context.settings.ReadSetting("MAIN", "LastOpenPath"));
  if (request.folder.empty()) request.folder = context.state.programFolder;
  request.fileMustExist = true;
  return request;
}

}  // namespace

std::string_view logTypeName(LogType type) {
  switch (type) {
    case LogType::None:
      return "";
    case LogType::ServU:
      return "Serv-U log file";
    case LogType::ServU25a:
      return "Serv-U 2.5a + log file";
    case LogType::WarFtpd:
      return "WAR FTPD log file";
  }
  return "";
}

void useLog(CommandContext& context, const std::filesystem::path& path, std::string_view title, LogType type) {
  MainWindowState& state = context.state;
  state.logPath = path;
  state.logTitle = title;
  state.logType = type;
  state.logTypeName = logTypeName(type);
  context.view.setStatusPanel(StatusPanel::LogType, state.logTypeName);
  context.view.setStatusPanel(StatusPanel::Text, "Using " + state.logTitle);
  context.view.showLogName(state.logTitle);
  forgetSessions(context);
}

void openLogFile(CommandContext& context, const std::filesystem::path& path) {
  const CommandGuard guard(context);
  if (!guard) return;
  openLog(context, path, lastLogType(context.settings));
}

void chooseLogFile(CommandContext& context) {
  const CommandGuard guard(context);
  if (!guard) return;
  const FileChoice choice = context.view.askOpenFile(logRequest(context));
  if (choice.outcome == FileChoice::Outcome::Failed) reportFailure(context, fileDialogErrorText(choice));
  if (choice.outcome == FileChoice::Outcome::Chosen) openLog(context, choice.path, logTypeOf(choice.filterIndex));
}

}  // namespace quorvel
