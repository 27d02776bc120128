// The program: wires the settings, a view and the commands together and picks how to run.
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "app/pacer.h"
#include "app/program.h"
#include "app/program_folder.h"
#include "app/working_folder.h"
#include "classic/tools/command_line_reference.h"
#include "cli/batch_run.h"
#include "cli/named_commands.h"
#include "log/interrupt.h"
#include "log/text.h"
#include "ui/console/console_view.h"
#include "ui/console/plain_line.h"
#include "ui/console/terminal.h"
#ifdef QUORVEL_HAS_WINDOW
#include "ui/qt/run_window.h"
#endif

namespace quorvel {
namespace {

constexpr int kSuccess = 0;
constexpr int kFailure = 1;

/// What every way to run is given.
struct Start {
  int argc;  ///< as main() was given them, for the window's library
  char** argv;
  std::filesystem::path programFolder;
  std::filesystem::path workingFolder;
  Settings& settings;
  std::string_view commandLine;  ///< the arguments with blanks between them; empty when none are to be taken
  std::filesystem::path log;     ///< that the window opens at first, of "--open FILE"; empty: none
};

std::string joined(const std::vector<std::string>& arguments) {
  std::string text;
  for (std::size_t i = 0; i < arguments.size(); ++i)
    text.append(i > 0 ? " " : "").append(arguments[i]);
  return text;
}

int runUnattended(const Start& start) {
  ConsoleView view(std::cerr, isErrorOutputTerminal() ? ConsoleView::Progress::Shown : ConsoleView::Progress::Hidden);
  Pacer pacer;
  frmMain window(systemFiles(), start.settings, view, pacer, start.programFolder, start.workingFolder);
  catchInterrupts();
  view.onYield([&window] {
    if (isInterrupted()) window.mnuStop_Click();
  });
  window.load();
  const BatchOutcome outcome = runBatch(window, start.commandLine, isInterrupted);
  window.unload();
  return outcome.failed ? kFailure : kSuccess;
}

#ifdef QUORVEL_HAS_WINDOW
int runWithWindow(const Start& start) {
  bool failed = false;
  const auto runArguments = [&start, &failed](frmMain& window) {
    if (!start.log.empty()) return window.openLogFile(start.log);
    const BatchOutcome outcome = runBatch(window, start.commandLine);
    failed = outcome.failed;
    if (outcome.endsProgram) window.context().view.closeWindow();
  };
  const int status = runWindow(
      start.argc, start.argv,
      {systemFiles(), start.settings, start.programFolder, start.workingFolder, endOutOfMemory, runArguments});
  return failed ? kFailure : status;
}
#else
/// There is no window that could stay open: arguments run unattended whatever AutoExit says.
int runWithWindow(const Start& start) {
  if (!start.commandLine.empty()) return runUnattended(start);
  if (!start.log.empty()) {
    std::cerr << "quorvel: This program has no window to open a log in." << std::endl;
    return kFailure;
  }
  std::cout << commandLineReference() << std::flush;
  return kSuccess;
}
#endif

std::optional<int> runCommand(const std::vector<std::string>& arguments) {
  if (arguments.empty() || !isNamedCommand(arguments.front())) return std::nullopt;
  catchInterrupts();
  return runNamedCommand(arguments,
                         {systemFiles(), std::cerr, outputWidth(), std::getenv("NO_COLOR") == nullptr, isInterrupted});
}

int run(int argc, char** argv) {
  const std::vector<std::string> arguments = programArguments(argc, argv);
  if (const auto status = runCommand(arguments)) return *status;
  const std::string commandLine = joined(arguments);
  if (commandLine == "--help" || commandLine == "--version") {
    std::cout << (commandLine == "--help" ? commandLineReference() : "quorvel " + std::string(kVersion) + "\n");
    return std::cout.flush() ? kSuccess : kFailure;
  }
  const bool opensLog = !arguments.empty() && arguments.front() == "--open";
  if (opensLog && arguments.size() > 2) {
    std::cerr << "quorvel: --open takes one log." << std::endl;
    return kFailure;
  }
  const auto programFolder = findProgramFolder();
  Settings settings(systemFiles(), programFolder);
  settings.prepareFile();
  settings.resetOtherVersion();
  constexpr std::string_view kSection = "COMMAND-LINE-ARGUMENTS";
  const bool takesArguments = !opensLog && settings.readNumber(kSection, "MaxArguments") > 0;
  const WorkingFolder workingFolder(programFolder);
  const Start start{argc,
                    argv,
                    programFolder,
                    workingFolder.path(),
                    settings,
                    takesArguments ? trimBlanks(commandLine) : "",
                    opensLog && arguments.size() > 1 ? pathFromBytes(arguments[1]) : std::filesystem::path()};
  const bool endsByItself = settings.readNumber(kSection, "AutoExit") == 1;
  return !start.commandLine.empty() && endsByItself ? runUnattended(start) : runWithWindow(start);
}

}  // namespace
}  // namespace quorvel

int main(int argc, char** argv) {
  quorvel::prepareStandardStreams();
  std::set_new_handler(quorvel::endOutOfMemory);
  try {
    return quorvel::run(argc, argv);
  } catch (const std::bad_alloc&) {
    quorvel::endOutOfMemory();
  } catch (const std::exception& error) {
    std::cerr << "quorvel: " << quorvel::plainLine(error.what()) << std::endl;
    return quorvel::kFailure;
  }
}
