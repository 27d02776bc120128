// The log and the program folder belong to others too: the server writes on, cuts, replaces or removes its log, and a
// second program may run in the same folder, at any moment.
#include <gtest/gtest.h>

#include <string>

#include "app/menu_commands.h"
#include "tests/faults/program_world.h"
#include "tests/support/memory_files.h"

namespace quorvel::test {
namespace {

const std::filesystem::path kLog = "/program/a.log";

struct Change {
  std::string name;
  void (*happen)(MemoryFiles& disk);
};

const Change kChanges[] = {
    {"grows", [](MemoryFiles& disk) { (void)disk.open(kLog, OpenMode::Append).value()->append(logLines(""), {}); }},
    {"is_cut", [](MemoryFiles& disk) { (void)disk.open(kLog, OpenMode::ReadWrite).value()->resize(1000); }},
    {"is_emptied", [](MemoryFiles& disk) { (void)disk.open(kLog, OpenMode::ReadWrite).value()->resize(0); }},
    {"is_replaced", [](MemoryFiles& disk) { disk.put(kLog, logLines("(000002)")); }},
    {"disappears", [](MemoryFiles& disk) { (void)disk.remove(kLog); }},
};

class ChangingLog : public testing::TestWithParam<Change> {};

/// From opening the log to clicking its sessions. The change happens before call number n that concerns the log; the
/// result is the number of such calls.
int work(const Change& change, int n) {
  using enum MenuItem;
  static const std::string kLong = longLog(1'800'000, 8000);  // read in several pieces, by a thread
  const std::filesystem::path results = "/program/out.txt";
  MemoryFiles disk;
  disk.put("/program/quorvel.ini", busySettings());
  disk.put(results, kOldResults);
  disk.put(kLog, kLong);
  ProgramWorld world(disk, "/program");
  int calls = 0;
  disk.beforeEachCall([&](const std::filesystem::path& path) {
    if (path == kLog && ++calls == n) change.happen(disk);
  });
  world.window.openLogFile(kLog);
  world.scan(kLog);
  for (std::int32_t node = 1; node <= std::min(world.window.state().tree.nodeCount(), 10); ++node)
    world.window.TreeView1_NodeClick(node);
  for (const MenuItem item : {mnuFilterAll, mnuFilterSelected, mnuCountAllTransfers, mnuCountUsersTransfers}) {
    world.view.choose(results);
    runMenuCommand(item, world.window);
  }
  world.expectIdle();
  EXPECT_TRUE(disk.content(results).starts_with(kOldResults) && disk.content(results).ends_with("\r\n"));
  expectWholeRecords(disk.content("/program/users.qva"));
  return calls;
}

TEST_P(ChangingLog, IsSurvivedAtEveryCall) {
  const int calls = work(GetParam(), 0);
  EXPECT_GT(calls, 20);
  for (int n = 1; n <= calls && !HasFailure(); ++n) {
    SCOPED_TRACE("before call " + std::to_string(n));
    (void)work(GetParam(), n);
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
  first.view.choose(folder / "out.txt");
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
