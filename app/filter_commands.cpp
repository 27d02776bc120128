#include "app/filter_commands.h"

#include <functional>
#include <string>

#include "app/command_report.h"
#include "app/file_choice.h"
#include "app/filter_run.h"
#include "app/needed_files.h"
#include "app/session_sources.h"
#include "log/text.h"

namespace quorvel {
namespace {

/// One of the commands that filter to a file.
struct FileFilter {
  std::string_view dialogFilter;
  std::string_view dialogTitle;
  SessionChoice sessions;
  bool hasChoice = true;       ///< something was clicked or ticked
  std::string_view what = {};  ///< to be clicked or ticked, as the message calls it
};

void showUsing(CommandContext& context) {
  context.view.setStatusPanel(StatusPanel::Text, "Using " + context.state.logTitle);
}

void showFiltering(CommandContext& context) {
  context.view.setStatusPanel(StatusPanel::Text, "Filtering " + context.state.logTitle);
}

/// The results file; empty when there is to be no output.
std::filesystem::path chooseResultsFile(CommandContext& context, const FileFilter& command) {
  const auto& state = context.state;
  if (state.batchFlag) {
    return refusesResultsFile(context, state.batchOutputFile) ? std::filesystem::path() : state.batchOutputFile;
  }
  FileRequest request;
  request.title = command.dialogTitle;
  request.filter = command.dialogFilter;
  request.folder = state.resultsFile.empty() ? state.programFolder : state.resultsFile.parent_path();
  request.existing = context.settings.readNumber("OPTION-SAVE", "AppendWhenFilter") == 0 ? ExistingFile::AskedToReplace
                                                                                         : ExistingFile::AskedToAppend;
  return chooseSavePath(context, request).value_or(std::filesystem::path());
}

/// What a filter wrote, in one line.
std::string resultText(const FilterOutcome& outcome, const std::filesystem::path& path) {
  const auto counted = [](std::uint64_t count, std::string_view what) {
    return std::to_string(count).append(" ").append(what).append(count == 1 ? "" : "s");
  };
  const std::string written =
      counted(outcome.sessions, "session") + ", " + counted(outcome.lines, "line") + " written to " + pathText(path);
  return outcome.wasStopped ? "Stopped: " + written : written;
}

/// Runs the filter and reports what it wrote, and what went wrong with the results or the log.
void writeBlocks(CommandContext& context, const LogFile& log, SessionList& sessions) {
  ResultsFile results(context.files, context.state.resultsFile);
  context.view.setProgressRange(0, log.length());
  context.view.showProgress(true);
  const FilterOutcome outcome = filterIntoFile(context, log, sessions, results);
  context.view.showProgress(false);
  if (results.isOk()) context.view.showResult(resultText(outcome, context.state.resultsFile));
  if (!results.isOk()) reportLostResults(context, results.status().error());
  if (!outcome.read.isOk()) reportFailure(context, outcome.read.error().sentence());
}

/// Everything after the choice of the results file.
void filterIntoResultsFile(CommandContext& context, const FileFilter& command) {
  const auto log = openNeededLog(context);
  if (!log) return;
  auto users = openNeededUsersFile(context);
  if (!users) return;
  if (!command.hasChoice) {
    const std::string text = "Exiting\r\nPlease " + std::string(command.what);
    return reportFailure(context, text);
  }
  const auto& results = context.state.resultsFile;
  if (context.settings.readNumber("OPTION-SAVE", "AppendWhenFilter") == 0 && context.files.Exist(results)) {
    (void)context.files.remove(results);
  }
  writeBlocks(context, *log, *command.sessions(*users));
  if (!users->status().isOk()) reportFailure(context, users->status().error().sentence());
}

void filterToFile(CommandContext& context, const FileFilter& command) {
  const auto path = chooseResultsFile(context, command);
  if (path.empty()) return;
  context.state.resultsFile = path;
  showFiltering(context);
  filterIntoResultsFile(context, command);
  showUsing(context);
}

bool hasTick(const SessionTree& tree) {
  for (std::int32_t node = 1; node <= tree.nodeCount(); ++node)
    if (tree.isChecked(node)) return true;
  return false;
}

/// The last record read becomes the current session, chosen or not.
SessionChoice readingAll(CommandContext& context, std::function<bool(const UserAct&)> isChosen) {
  return [&context, isChosen = std::move(isChosen)](UsersFile& users) {
    auto sessions = chosenSessions(users, isChosen);
    if (const UserAct* const last = users.read(users.recordCount())) context.state.currentSession = *last;
    return sessions;
  };
}

}  // namespace

void writeFilterOptionsHeader(CommandContext& context) {
  std::string text = "Filter options: ";
  const auto add = [&](std::string_view key, char letter) {
    if (context.settings.readNumber("OPTION-FILTER", key) == 1) text += letter;
  };
  add("AutoFilterSession", 'A');
  add("FilterTransfers", 'T');
  add("FilterDeletes", 'D');
  add("FilterMDTM", 'M');
  add("FilterSITE", 'S');
  context.view.setStatusPanel(StatusPanel::FilterOptions, text);
}

void filterSession(CommandContext& context) {
  const CommandGuard guard(context);
  if (guard && context.state.hasLog()) filterCurrentSession(context);
}

void filterCurrentSession(CommandContext& context) {
  context.view.showBusyPointer(true);
  showFiltering(context);
  if (const auto log = openNeededLog(context)) {
    const FilterOutcome outcome = filterIntoWindow(context, *log, context.state.currentSession);
    if (!outcome.read.isOk()) reportFailure(context, outcome.read.error().sentence());
  } else {
    context.view.setFilterText({});
  }
  showUsing(context);
  context.view.showBusyPointer(false);
}

void filterAll(CommandContext& context) {
  const CommandGuard guard(context);
  if (!guard || !context.state.hasLog()) return;
  filterToFile(context, {.dialogFilter = "Filtered logfile (all sessions)             (*.txt)|*.txt",
                         .dialogTitle = "Save filter results (all sessions)",
                         .sessions = readingAll(context, [](const UserAct&) { return true; })});
}

void filterIP(CommandContext& context) {
  const CommandGuard guard(context);
  if (!guard || !context.state.hasLog()) return;
  const std::string ip = context.state.batchFlag ? context.state.BatchFilterIP : context.state.currentSession.IP;
  filterToFile(context, {.dialogFilter = "Filtered logfile (selected IP)             (*.txt)|*.txt",
                         .dialogTitle = "Save filter results (IP)",
                         .sessions = readingAll(context, [ip](const UserAct& record) { return record.IP == ip; }),
                         .hasChoice = !ip.empty(),
                         .what = "click on a session with the current IP"});
}

void filterUser(CommandContext& context) {
  const CommandGuard guard(context);
  if (!guard || !context.state.hasLog()) return;
  std::string name = context.state.currentSession.Name;
  if (context.state.batchFlag) name = nameInRecords(context.settings, context.state.BatchFilterUser);
  filterToFile(context, {.dialogFilter = "Filtered logfile (selected user)             (*.txt)|*.txt",
                         .dialogTitle = "Save filter results (user)",
                         .sessions = readingAll(context, [name](const UserAct& record) { return record.Name == name; }),
                         .hasChoice = !name.empty(),
                         .what = "click on a session with the current user"});
}

void filterSelected(CommandContext& context) {
  const CommandGuard guard(context);
  if (!guard || !context.state.hasLog()) return;
  if (!context.state.showsCheckBoxes) {
    context.view.showMessage(
        {"No checkboxes availible.\r\nEneable the checkboxes.\r\n"
         "Preferences -> Options -> TreeView options",
         Buttons::Ok,
         {}});
    return;
  }
  const auto sessions = [&context](UsersFile& users) {
    auto chosen = checkedSessions(users, context.state.tree);
    if (chosen->size() > 0) context.state.currentSession = chosen->session(chosen->size() - 1);
    return chosen;
  };
  const bool hasClicked = !context.state.currentSession.Name.empty();
  filterToFile(context,
               {.dialogFilter = "Filtered logfile (selected session(s))        (*.txt)|*.txt",
                .dialogTitle = "Save filter results (session)",
                .sessions = sessions,
                .hasChoice = hasClicked && hasTick(context.state.tree),
                .what = hasClicked ? "tick the sessions to filter" : "click on a session with the current user"});
}

}  // namespace quorvel
