// A main window for the tests of its commands, and one with a small log whose sessions were found and put into the
// tree.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "app/command_context.h"
#include "app/tree_commands.h"
#include "core/servu_find_user_info.h"
#include "core/users_file.h"
#include "tests/support/failing_files.h"
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

/// Fresh settings in a folder of their own, and every yield taken.
class CommandTest : public testing::Test {
 protected:
  CommandTest() {
    state.programFolder = folder.path();
    state.logTitle = "a.log";
    settings.WriteDefaultSettingsFile();
  }
  [[nodiscard]] std::string message() const { return view.messages().empty() ? "" : view.messages().back().text; }
  /// Attempts something on files whose operation 1, 2, 3 ... fails, until none does. Returns the number of attempts.
  int failEachOperation(const std::function<void(CommandContext&, const FailingFiles&)>& attempt) {
    for (int failing = 1;; ++failing) {
      SCOPED_TRACE("operation " + std::to_string(failing));
      FailingFiles files(failing);
      CommandContext other{files, settings, state, view, pacer};
      attempt(other, files);
      if (!files.hasFailed()) return failing;
    }
  }

  TempFolder folder;
  Settings settings{systemFiles(), folder.path()};
  MainWindowState state;
  RecordingView view;
  Pacer pacer{Pacer::Clock::duration::zero()};
  CommandContext context{systemFiles(), settings, state, view, pacer};
};

class ScannedLogTest : public CommandTest, private FindObserver {
 protected:
  ScannedLogTest() {
    state.logPath = folder.write("a.log", logLines(""));
    state.logTypeName = "Serv-U log file";
    const auto log = LogFile::open(systemFiles(), state.logPath);
    EXPECT_TRUE(ServuFindUserInfo(log.value(), {}, *this).isOk());
    m_writer.flush();
    buildSessionTree(context);
    view.forgetCalls();
  }
  /// Clicks a node without filtering its session.
  void click(std::int32_t node) {
    settings.WriteSetting("OPTION-FILTER", "AutoFilterSession", "0");
    clickNode(context, node);
    view.forgetCalls();
  }
  void startBatch() {
    state.batchFlag = true;
    state.batchOutputFile = folder / "out.txt";
  }

 private:
  void onSession(const UserAct& record) override { m_writer.WriteSessionRecord(record, record.LogonNo); }
  bool keepGoing(LogPosition) override { return true; }

  UsersFileWriter m_writer{systemFiles(), folder / "users.qva", [](const UserAct&, std::int32_t, const Error&) {}};
};

// Nodes of the tree in the layout of fresh settings.
inline constexpr std::int32_t kAliceNode = 1;
inline constexpr std::int32_t kFirstSession = 2;
inline constexpr std::int32_t kBobNode = 3;
inline constexpr std::int32_t kSecondSession = 4;
inline constexpr std::int32_t kThirdSession = 5;

}  // namespace quorvel::test
