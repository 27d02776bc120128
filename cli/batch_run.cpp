#include "cli/batch_run.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "app/command_report.h"
#include "classic/tools/command_codes.h"
#include "log/text.h"

namespace quorvel {
namespace {

const CommandCode* findCode(std::string_view argument) {
  const auto number = parseInteger(argument);
  const auto* const hit = std::find_if(kCommandCodes.begin(), kCommandCodes.end(),
                                       [number](const CommandCode& c) { return number == c.code; });
  return hit == kCommandCodes.end() ? nullptr : hit;
}

/// One code to run, with its value as it stood on the command line.
struct Step {
  const CommandCode* code;
  std::string value;
};

/// The codes of a sorted table, each once; the values in between are no codes, whatever they look like.
std::vector<Step> stepsOf(const classCommandLineArgument& arguments) {
  const auto& sorted = arguments.sortedArguments();
  std::vector<Step> steps;
  std::set<int> seen;
  for (std::size_t i = 2; i <= arguments.argumentCount() && i < sorted.size(); ++i) {
    const CommandCode* const code = findCode(sorted[i]);
    if (code == nullptr || !seen.insert(code->code).second) continue;
    const bool takesNext = code->takesValue() && i + 1 < sorted.size();
    steps.push_back({code, takesNext ? sorted[i + 1] : std::string()});
    if (takesNext) ++i;
  }
  return steps;
}

bool writesResults(const Step& step) {
  return step.code->code != kFindUsersCode;
}

/// Counting the whole log is the one result that needs no list of sessions.
bool readsSessions(const Step& step) {
  return writesResults(step) && step.code->code != kCountAllCode;
}

class BatchRun {
 public:
  BatchRun(frmMain& window, const InterruptTest& isInterrupted)
      : m_window(window),
        m_context(window.context()),
        m_arguments(m_context.settings, window.state().programFolder),
        m_isInterrupted(isInterrupted) {}

  BatchOutcome run(std::string_view text) {
    const Status parsed = m_arguments.GetCommandLine(text);
    if (m_arguments.sortedArguments()[1].empty()) return {};
    openLog();
    const auto steps = stepsOf(m_arguments);
    if (const auto problem = findProblem(parsed, steps)) {
      fail(*problem);
    } else {
      runSteps(steps);
    }
    const bool autoExit = m_context.settings.readNumber("COMMAND-LINE-ARGUMENTS", "AutoExit") == 1;
    return {m_window.state().batchFailed, autoExit};
  }

 private:
  /// The state the Open command leaves, always with the first log type; no setting is changed.
  void openLog() {
    m_arguments.fix_filenames_from_command_array(m_arguments.sortedArguments()[1]);
    m_window.useLog(m_arguments.FullPath(), toWindows1252(m_arguments.FileName()), LogType::ServU);
  }

  /// What keeps the whole run from starting, in one sentence; empty: nothing.
  [[nodiscard]] std::optional<std::string> findProblem(const Status& parsed, const std::vector<Step>& steps) {
    if (!parsed.isOk()) {
      const auto& last = m_arguments.rawArguments().back();
      return parsed.error().description() + ": code " + last + " needs a value (" + std::string(findCode(last)->value) +
             ").";
    }
    const auto log = m_context.files.open(m_window.state().logPath, OpenMode::Read);
    if (!log.isOk()) return log.error().sentence();
    const auto writer = std::find_if(steps.begin(), steps.end(), writesResults);
    if (writer == steps.end()) return std::nullopt;
    if (!m_arguments.endsWithOutputFile()) {
      return "Code " + std::to_string(writer->code->code) +
             " needs a file for its results as the last argument; it is missing.";
    }
    const auto reader = std::find_if(steps.begin(), steps.end(), readsSessions);
    const bool findsSessions = steps.front().code->code == kFindUsersCode;
    if (reader != steps.end() && !findsSessions && !m_context.files.Exist(m_window.state().usersFilePath())) {
      return "Code " + std::to_string(reader->code->code) + " needs the sessions that code 100 finds; add code 100.";
    }
    m_window.state().batchFlag = true;
    std::string reason = whyNoResultsFile(m_context, outputFile());
    m_window.state().batchFlag = false;
    if (!reason.empty()) return reason;
    return std::nullopt;
  }

  /// A named pipe is kept open as long as the run lasts, so that its reader gets all results as one stream. It is
  /// waited for until somebody reads it.
  [[nodiscard]] std::unique_ptr<File> openPipe() {
    std::error_code error;
    if (std::filesystem::status(outputFile(), error).type() != std::filesystem::file_type::fifo) return nullptr;
    while (true) {
      auto pipe = m_context.files.open(outputFile(), OpenMode::Append);
      if (pipe.isOk()) return std::move(pipe.value());
      const bool isWaiting = pipe.error().code == ErrorCode::DeviceUnavailable;
      if (!isWaiting || isInterrupted() || m_window.state().stopFlag) return nullptr;
      m_context.view.yield();
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  }

  void runSteps(const std::vector<Step>& steps) {
    const auto pipe = std::any_of(steps.begin(), steps.end(), writesResults) ? openPipe() : nullptr;
    for (const Step& step : steps) {
      if (isInterrupted() || m_window.state().batchReaderGone) break;
      m_window.state().batchFlag = true;
      runStep(step);
      m_window.state().batchFlag = false;
    }
    if (isInterrupted()) fail("Interrupted; the results are not complete.");
  }

  void runStep(const Step& step) {
    auto& state = m_window.state();
    if (writesResults(step)) state.batchOutputFile = outputFile();
    switch (step.code->code) {
      case kFindUsersCode:
        return m_window.mnuFindUsers_Click();
      case kFilterAllCode:
        return m_window.mnuFilterAll_Click();
      case kFilterIPCode:
        state.BatchFilterIP = step.value;
        return m_window.mnuFilterIP_Click();
      case kFilterUserCode:
        state.BatchFilterUser = toWindows1252(step.value);
        return m_window.mnuFilterUser_Click();
      case kCountAllCode:
        state.batchDescription = "All transfers";
        return m_window.mnuCountAllTransfers_Click();
      case kCountIPCode:
        state.BatchCountIP = step.value;
        state.batchDescription = "IP: " + state.BatchCountIP;
        return m_window.mnuCountIPTransfers_Click();
      case kCountUserCode:
        state.BatchCountUser = toWindows1252(step.value);
        state.batchDescription = "username: " + state.BatchCountUser;
        return m_window.mnuCountUsersTransfers_Click();
      default:
        return;
    }
  }

  [[nodiscard]] std::filesystem::path outputFile() const { return pathFromBytes(m_arguments.rawArguments().back()); }
  [[nodiscard]] bool isInterrupted() const { return m_isInterrupted && m_isInterrupted(); }

  void fail(std::string text) {
    m_window.state().batchFailed = true;
    m_context.view.showMessage({std::move(text), Buttons::Ok, {}});
  }

  frmMain& m_window;
  CommandContext& m_context;
  classCommandLineArgument m_arguments;
  const InterruptTest& m_isInterrupted;
};

}  // namespace

BatchOutcome runBatch(frmMain& window, std::string_view text, const InterruptTest& isInterrupted) {
  return BatchRun(window, isInterrupted).run(text);
}

}  // namespace quorvel
