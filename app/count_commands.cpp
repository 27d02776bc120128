#include "app/count_commands.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "app/command_report.h"
#include "app/needed_files.h"
#include "app/session_sources.h"
#include "app/tree_commands.h"
#include "classic/counter/bad_transfers.h"
#include "classic/counter/counter_result.h"
#include "classic/counter/transfer_counter.h"
#include "classic/find/users_file.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::string_view kSection = "OPTION-COUNTER";

class CountProgress final : public CountObserver {
 public:
  explicit CountProgress(CommandContext& context)
      : m_context(context), m_badTransfers(context.files, context.state.badTransfersPath()) {}

  [[nodiscard]] LogPosition reached() const { return m_reached; }

  void onFailedTransfer(std::string_view line, bool isFirst) override { m_badTransfers.LogBadTransfer(line, isFirst); }
  bool keepGoing(LogPosition position) override {
    m_reached = position;
    if (m_context.pacer.isDueAmongMany()) {
      m_badTransfers.flush();
      m_context.view.setProgress(position);
      m_context.view.setPositionLabels("Current position:", std::to_string(position));
      m_context.view.yield();
    }
    return !m_context.state.stopFlag;
  }

 private:
  CommandContext& m_context;
  BadTransferLog m_badTransfers;
  LogPosition m_reached = 0;
};

/// What one of the commands counts and how the result is called.
struct CountCommand {
  std::string caption;      ///< of the result window
  std::string description;  ///< in the batch output file
  SessionChoice sessions;   ///< empty: the whole log is counted
};

void showCounting(CommandContext& context, bool isCounting) {
  if (isCounting) {
    context.view.showBusyPointer(true);
    context.view.setStatusPanel(StatusPanel::Text, "Counting transfers");
    context.view.setPositionLabels("Current position:", "0");
    context.view.showProgress(true);
  } else {
    context.view.showProgress(false);
    context.view.showBusyPointer(false);
  }
}

/// What a count did beside the totals.
struct CountOutcome {
  Status read;              ///< what kept the log, or the users file, from being read to the end
  bool wasStopped = false;  ///< before the log's end
  int percent = 100;        ///< of the log that was read then
};

/// Adds to the totals; users is null where the whole log is counted.
CountOutcome countTransfers(CommandContext& context, const LogFile& log, UsersFile* users, const CountCommand& command,
                            TransferCount& totals) {
  context.view.setProgressRange(0, log.length());
  CountProgress progress(context);
  const CountOptions options{.countBytes = context.settings.readFlag(kSection, "CountBytes"),
                             .showsFailures = context.settings.readFlag(kSection, "GetFilenameOnTransferError")};
  context.state.stopFlag = false;
  CountOutcome outcome;
  const auto sessions = users != nullptr ? command.sessions(*users) : nullptr;
  if (context.state.logShape == LogShape::Current) {
    outcome.read = countCurrentTransfers(log, sessions.get(), options, totals, progress);
  } else if (sessions == nullptr) {
    outcome.read = CountAllTransfers(log, options, totals, progress);
  } else {
    outcome.read =
        CountSessionTransfers(log, *sessions, options, totals, progress, {context.files, context.state.workingFolder});
  }
  if (users != nullptr && outcome.read.isOk()) outcome.read = users->status();
  outcome.wasStopped = std::exchange(context.state.stopFlag, false) && progress.reached() < log.length();
  if (outcome.wasStopped)
    outcome.percent =
        static_cast<int>(100.0 * static_cast<double>(progress.reached()) / static_cast<double>(log.length()));
  return outcome;
}

CounterResultOptions resultOptions(const CommandContext& context) {
  return {.countBytes = context.settings.readFlag(kSection, "CountBytes"),
          .getFilenameOnTransferError = context.settings.readFlag(kSection, "GetFilenameOnTransferError"),
          .badTransfersPath = context.state.badTransfersPath()};
}

void ShowCounterResult(CommandContext& context, std::string_view caption, const TransferCount& totals) {
  const std::string text = counterResultText(totals, resultOptions(context));
  context.view.setStatusPanel(StatusPanel::Text, "Displaying counter result");
  context.view.showCounterResult(caption, text);
}

void appendResult(CommandContext& context, const CountCommand& command, const TransferCount& totals) {
  const Status written = AppendCounterResult(context.files, context.state.batchOutputFile, totals, command.description,
                                             resultOptions(context));
  if (!written.isOk()) reportLostResults(context, written.error());
}

void showUsing(CommandContext& context) {
  context.view.setStatusPanel(StatusPanel::Text, "Using " + context.state.logTypeName);
}

void run(CommandContext& context, const CountCommand& command) {
  const bool isBatch = context.state.batchFlag;
  if (isBatch && refusesResultsFile(context, context.state.batchOutputFile)) return;
  const auto log = openNeededLog(context);
  if (!log) return;
  std::optional<UsersFile> users;
  if (command.sessions && !(users = openNeededUsersFile(context))) return;
  TransferCount totals;
  showCounting(context, true);
  const CountOutcome outcome = countTransfers(context, *log, users ? &*users : nullptr, command, totals);
  showCounting(context, false);
  if (!outcome.read.isOk()) {
    reportFailure(context, outcome.read.error().sentence());
  } else if (!isBatch) {
    const std::string incomplete = " - incomplete, " + std::to_string(outcome.percent) + " %";
    ShowCounterResult(context, command.caption + (outcome.wasStopped ? incomplete : ""), totals);
  } else if (!outcome.wasStopped) {
    appendResult(context, command, totals);
  }
  showUsing(context);
}

SessionChoice allFor(std::function<bool(const UserAct&)> isChosen) {
  return [isChosen = std::move(isChosen)](UsersFile& users) { return chosenSessions(users, isChosen); };
}

/// The session of the node clicked last becomes the current one again, whatever was read since.
void readCurrentSession(CommandContext& context) {
  if (context.state.batchFlag || context.state.selectedNode == 0) return;
  if (auto session = readSessionOfNode(context, context.state.selectedNode)) context.state.currentSession = *session;
}

/// Ends a command of the window whose key is empty, after a message; what is a "user" or an "IP" in it.
bool refusesEmptyKey(CommandContext& context, std::string_view key, std::string_view what) {
  if (context.state.batchFlag || !key.empty()) return false;
  const std::string text = "Please click on a session with the current " + std::string(what) + "\r\nExiting";
  context.view.showMessage({text, Buttons::Ok, {}});
  showUsing(context);
  return true;
}

}  // namespace

void countAllTransfers(CommandContext& context) {
  const CommandGuard guard(context);
  if (!guard || !context.state.hasLog()) return;
  run(context, {"Counter result - all users", "All transfers", {}});
}

void countSelectedSessions(CommandContext& context) {
  const CommandGuard guard(context);
  if (!guard || !context.state.hasLog()) return;
  readCurrentSession(context);
  const auto choose = [&context](UsersFile& users) { return checkedSessions(users, context.state.tree); };
  run(context, {"Counter result - selected sessions", context.state.batchDescription, choose});
}

void countIPTransfers(CommandContext& context) {
  const CommandGuard guard(context);
  if (!guard || !context.state.hasLog()) return;
  readCurrentSession(context);
  const std::string ip = context.state.batchFlag ? context.state.BatchCountIP : context.state.currentSession.IP;
  if (refusesEmptyKey(context, ip, "IP")) return;
  run(context, {"Counter result - IP: " + ip, context.state.batchDescription,
                allFor([ip](const UserAct& record) { return record.IP == ip; })});
}

void countUsersTransfers(CommandContext& context) {
  const CommandGuard guard(context);
  if (!guard || !context.state.hasLog()) return;
  readCurrentSession(context);
  std::string name = context.state.currentSession.Name;
  if (context.state.batchFlag) name = nameInRecords(context.settings, context.state.BatchCountUser);
  if (refusesEmptyKey(context, name, "user")) return;
  run(context, {"Counter result - username: " + name, context.state.batchDescription,
                allFor([name](const UserAct& record) { return record.Name == name; })});
}

void countSessionsTransfers(CommandContext& context) {
  const CommandGuard guard(context);
  if (!guard || !context.state.hasLog()) return;
  readCurrentSession(context);
  const auto current = [&context](UsersFile&) { return std::make_unique<OneSession>(context.state.currentSession); };
  run(context, {"Counter result - this session", context.state.batchDescription, current});
}

void pasteCounterResult(CommandContext& context, std::string_view caption, std::string_view text) {
  std::string block = "\r\n\r\n--- " + upperCase(caption) + " ---\r\n";
  block.append(text).append(kLineEnd);
  context.view.appendFilterText(block);
}

}  // namespace quorvel
