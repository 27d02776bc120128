// A main window with a small log whose sessions were found and put into the tree.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/main_window.h"
#include "core/users_file.h"
#include "tests/support/recording_view.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {

/// Lines of the log without their ends: alice (000001), bob (000002) and alice again (000003), two of them at once.
inline const std::vector<std::string> kLogLines = {
    "[2] Wed 19Jan05 13:28:01 - (000001) Connected to 10.0.0.5 (Local address 10.0.0.1)",
    "[6] Wed 19Jan05 13:28:02 - (000001) USER alice",
    "[2] Wed 19Jan05 13:28:03 - (000002) Connected to 10.0.0.6 (Local address 10.0.0.1)",
    "[6] Wed 19Jan05 13:28:04 - (000002) USER bob",
    "[6] Wed 19Jan05 13:28:05 - (000001) RETR a.zip",
    "[6] Wed 19Jan05 13:28:06 - (000001) Sent file C:\\a.zip successfully (12.5 Kb/sec - 40960 bytes)",
    "[6] Wed 19Jan05 13:28:07 - (000002) STOR b.txt",
    "[6] Wed 19Jan05 13:28:08 - (000002) Received file C:\\b.txt successfully (3.1 Kb/sec - 1024 bytes)",
    "[5] Wed 19Jan05 13:28:09 - (000001) Closing connection for user ALICE",
    "[5] Wed 19Jan05 13:28:10 - (000002) Closing connection for user BOB",
    "[2] Wed 19Jan05 13:28:11 - (000003) Connected to 10.0.0.5 (Local address 10.0.0.1)",
    "[6] Wed 19Jan05 13:28:12 - (000003) USER alice",
    "[5] Wed 19Jan05 13:28:13 - (000003) Error sending file C:\\c.zip",
    "[5] Wed 19Jan05 13:28:14 - (000003) Closing connection for user ALICE",
};

/// The lines whose text holds the part, each with its end.
inline std::string logLines(std::string_view part) {
  std::string text;
  for (const std::string& line : kLogLines)
    if (line.find(part) != std::string::npos) text += line + "\r\n";
  return text;
}

/// The program without a screen, with every yield taken. files must outlive it.
struct Program {
  Program(FileSystem& files, const std::filesystem::path& programFolder)
      : settings(files, programFolder), window(files, settings, view, pacer, programFolder) {}

  /// Opens a log and finds its sessions.
  void scan(const std::filesystem::path& log) {
    window.useLog(log, log.filename().string(), LogType::ServU);
    window.mnuFindUsers_Click();
  }

  Settings settings;
  RecordingView view;
  Pacer pacer{Pacer::Clock::duration::zero()};
  frmMain window;
  MainWindowState& state = window.state();
};

struct OwnFolder {
  TempFolder folder;
};

/// The program with fresh settings and the log in a folder of its own.
struct LogWindow : OwnFolder, Program {
  LogWindow() : Program(systemFiles(), folder.path()) {
    folder.write("a.log", logLines(""));
    settings.WriteDefaultSettingsFile();
  }
  void scan() { Program::scan(folder / "a.log"); }
};

/// The log's sessions are in the tree.
class ScannedLogTest : public testing::Test, protected LogWindow {
 protected:
  ScannedLogTest() { scan(); }
};

// Nodes of the tree in the layout of fresh settings.
inline constexpr std::int32_t kFirstSession = 2;
inline constexpr std::int32_t kSecondSession = 4;
inline constexpr std::int32_t kThirdSession = 5;

}  // namespace quorvel::test
