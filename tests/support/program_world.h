// The whole program without a screen, a small log, and what is put around them.
#pragma once

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "app/main_window.h"
#include "classic/find/record_format.h"
#include "classic/find/users_file.h"
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

/// A fresh settings file with what makes the commands touch more files, and an entry of somebody else's at its end.
inline std::string busySettings() {
  const std::regex off("(GetFilenameOnTransferError|CheckBoxInTreeView)=0");
  return std::regex_replace(defaultSettingsText(), off, "$1=1") + "[OTHER]\r\nKept=yes\r\n";
}

inline constexpr std::string_view kOldResults = "of an earlier run\r\n";

/// The lines of the small log over and over, each time with a line of padding dashes behind them.
inline std::string longLog(std::size_t size, std::size_t padding = 0) {
  std::string text;
  while (text.size() < size)
    text += logLines("") + (padding > 0 ? std::string(padding, '-') + "\r\n" : "");
  return text;
}

/// Every slot of a users file holds a record, or nothing.
inline void expectWholeRecords(std::string_view users) {
  for (std::size_t at = 0; at < users.size(); at += kRecordSize)
    EXPECT_TRUE(decodeRecord(users.substr(at, kRecordSize))) << "record at byte " << at;
}

// Nodes of the tree in the layout of fresh settings.
inline constexpr std::int32_t kFirstSession = 2;
inline constexpr std::int32_t kSecondSession = 4;
inline constexpr std::int32_t kThirdSession = 5;

/// With every yield taken. files must outlive the world.
struct ProgramWorld {
  ProgramWorld(FileSystem& files, const std::filesystem::path& programFolder)
      : settings(files, programFolder), window(files, settings, view, pacer, programFolder) {}

  /// Opens a log and finds its sessions.
  void scan(const std::filesystem::path& log) {
    window.useLog(log, log.filename().string(), LogType::ServU);
    window.mnuFindUsers_Click();
  }
  /// Starts the program, finds the small log's sessions, ticks two of them and clicks the first.
  void scanAndTick(const std::filesystem::path& log) {
    window.load();
    scan(log);
    window.setNodeChecked(kFirstSession, true);
    window.setNodeChecked(kThirdSession, true);
    window.TreeView1_NodeClick(kFirstSession);
  }
  /// As behind every command: what it switched on is off again, what it took away is back.
  void expectIdle() {
    for (const std::string last :
         {"running off", "busy off", "progress off", "labels off", "tree enabled on", "tree visible on"}) {
      const auto calls = view.callsStartingWith(last.substr(0, last.rfind('o') + 1));
      EXPECT_TRUE(calls.empty() || calls.back() == last) << calls.back();
    }
    EXPECT_EQ(view.callsStartingWith("tree about").size(), view.callsStartingWith("tree changed").size());
    EXPECT_FALSE(state.commandRunning);
    EXPECT_TRUE(view.status(StatusPanel::Text).starts_with("Using")) << view.status(StatusPanel::Text);
  }
  [[nodiscard]] std::string allMessages() const {
    std::string text;
    for (const Message& message : view.messages())
      text += message.text + '\n';
    return text;
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
struct LogWindow : OwnFolder, ProgramWorld {
  LogWindow() : ProgramWorld(systemFiles(), folder.path()) {
    folder.write("a.log", logLines(""));
    settings.WriteDefaultSettingsFile();
  }
  void scan() { ProgramWorld::scan(folder / "a.log"); }
};

/// The log's sessions are in the tree.
class ScannedLogTest : public testing::Test, protected LogWindow {
 protected:
  ScannedLogTest() { scan(); }
};

}  // namespace quorvel::test
