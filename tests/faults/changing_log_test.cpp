// The log and the program folder belong to others too: the server writes on, cuts, replaces or removes its log, and a
// second program may run in the same folder, at any moment.
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <string>

#include "tests/faults/program_world.h"

namespace quorvel::test {
namespace {

struct Change {
  std::string name;
  void (*happen)(const std::filesystem::path& log);
};

const Change kChanges[] = {
    {"grows", [](const std::filesystem::path& log) { std::ofstream(log, std::ios::app) << logLines(""); }},
    {"is_cut", [](const std::filesystem::path& log) { std::filesystem::resize_file(log, 1000); }},
    {"is_emptied", [](const std::filesystem::path& log) { std::filesystem::resize_file(log, 0); }},
    {"is_replaced",
     [](const std::filesystem::path& log) {
       std::ofstream(log.string() + ".new", std::ios::binary) << logLines("(000002)");
       std::filesystem::rename(log.string() + ".new", log);
     }},
    {"disappears", [](const std::filesystem::path& log) { std::filesystem::remove(log); }},
};

class ChangingLog : public testing::TestWithParam<Change> {
 protected:
  /// From opening the log to clicking its sessions. change happens before call number n that concerns the log; the
  /// result is the number of such calls.
  int work(int n) {
    const TempFolder folder;
    folder.write("quorvel.ini", busySettings());
    folder.write("out.txt", kOldResults);
    static const std::string kLong = longLog(1'800'000, 8000);  // read in several pieces, by a thread
    const auto log = folder.write("a.log", kLong);
    ProgramWorld world(systemFiles(), folder.path());
    std::atomic<int> calls = 0;
    world.files.beforeEachCall([&](const std::filesystem::path& path) {
      if (path == log && ++calls == n && std::filesystem::exists(log)) GetParam().happen(log);
    });
    world.window.load();
    world.window.openLogFile(log);
    world.scan(log);
    for (std::int32_t node = 1; node <= std::min(world.window.state().tree.nodeCount(), 10); ++node)
      world.window.TreeView1_NodeClick(node);
    for (const auto item : {&frmMain::mnuFilterAll_Click, &frmMain::mnuFilterSelected_Click,
                            &frmMain::mnuCountAllTransfers_Click, &frmMain::mnuCountUsersTransfers_Click}) {
      world.view.chooseSave(folder / "out.txt");
      (world.window.*item)();
    }
    world.expectIdle();
    EXPECT_TRUE(folder.read("out.txt").starts_with(kOldResults) && folder.read("out.txt").ends_with("\r\n"));
    expectWholeRecords(folder.read("users.qva"));
    return calls;
  }
};

TEST_P(ChangingLog, IsSurvivedAtEveryCall) {
  const int calls = work(0);
  EXPECT_GT(calls, 20);
  for (int n = 1; n <= calls && !HasFailure(); ++n) {
    SCOPED_TRACE("before call " + std::to_string(n));
    (void)work(n);
  }
}

INSTANTIATE_TEST_SUITE_P(Faults, ChangingLog, testing::ValuesIn(kChanges),
                         [](const auto& change) { return change.param.name; });

TEST(TwoPrograms, TheOneWhoseRecordsAreGoneSaysSo) {
  const TempFolder folder;
  folder.write("quorvel.ini", busySettings());
  const auto log = folder.write("a.log", logLines(""));
  ProgramWorld first(systemFiles(), folder.path());
  ProgramWorld second(systemFiles(), folder.path());
  first.scan(log);
  second.scan(log);
  const std::string settings = folder.read("quorvel.ini");
  second.window.unload();
  EXPECT_EQ(folder.read("quorvel.ini"), settings);

  first.window.TreeView1_NodeClick(kSecondSession);
  EXPECT_TRUE(first.allMessages().starts_with("Lost file: users.qva\r\n")) << first.allMessages();
  folder.write("out.txt", kOldResults);
  first.view.chooseSave(folder / "out.txt");
  first.window.mnuFilterAll_Click();
  EXPECT_EQ(folder.read("out.txt"), kOldResults);
  first.window.mnuFindUsers_Click();
  first.view.forgetCalls();
  first.window.TreeView1_NodeClick(kSecondSession);
  EXPECT_TRUE(first.view.callsStartingWith("message").empty());
  EXPECT_EQ(first.window.state().currentSession.Name, "bob");
}

}  // namespace
}  // namespace quorvel::test
