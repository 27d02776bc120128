// The unattended run: opens the log named on the command line and runs the window's commands its codes ask for.
#pragma once

#include <functional>

#include "app/main_window.h"
#include "cli/command_line_argument.h"

namespace quorvel {

struct BatchOutcome {
  /// Something could not be done; the view was told in one message per problem. Makes the exit status 1.
  bool failed = false;
  /// The program is to end now: arguments were given and the setting AutoExit is on.
  bool endsProgram = false;
};

/// What the run asks between two commands; true ends it. May be empty: never.
using InterruptTest = std::function<bool()>;

/// Last step of start-up, on a loaded window. text: the arguments behind the program's name, joined with blanks. Does
/// nothing where it holds none. Results are added to the file named last, relative to the current folder. Nothing is
/// run when the log cannot be read, a code misses its value, results would have nowhere to go or go into the log, or a
/// code needs sessions and neither is code 100 there to find them nor a users file.
[[nodiscard]] BatchOutcome runBatch(frmMain& window, std::string_view text, const InterruptTest& isInterrupted = {});

}  // namespace quorvel
