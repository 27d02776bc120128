// Runs the program with its window. The only thing of this folder that the executable's main() needs.
#pragma once

#include <filesystem>
#include <functional>

#include "app/main_window.h"

namespace quorvel {

/// What the window is opened with. The references must outlive the run.
struct WindowStart {
  FileSystem& files;
  Settings& settings;  ///< the settings file is in place and of this version
  std::filesystem::path programFolder;
  std::filesystem::path workingFolder;  ///< of this process
  /// Ends the program: memory ran out in what Qt called, and no exception may pass through Qt.
  void (*endOutOfMemory)();
  /// Last step of start-up, run once when the window is on the screen: the commands of the command line. May be empty.
  /// It may close the window through the view.
  std::function<void(frmMain&)> afterStartUp;
};

/// Shows the start-up window, opens the main window and runs it until it is closed. Call at most once. Returns the
/// exit status for main().
[[nodiscard]] int runWindow(int argc, char** argv, const WindowStart& start);

}  // namespace quorvel
