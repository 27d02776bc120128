// The log and the program folder belong to others too: the server writes on, cuts, replaces or removes its log, and a
// second program may run in the same folder, at any moment.
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <string>

#include "core/record_format.h"
#include "tests/faults/program_world.h"

namespace quorvel::test {
namespace {

/// Long enough to be read in several pieces, by a thread of its own.
std::string longLog() {
  std::string text;
  for (int i = 0; i < 200; ++i)
    text += logLines("") + std::string(8000, '-') + "\r\n";
  return text;
}

struct Change {
  const char* name;
  void (*happen)(const std::filesystem::path& log);
};

const Change kChanges[] = {
    {"grows", [](const std::filesystem::path& log) { std::ofstream(log, std::ios::app) << logLines(""); }},
    {"is_cut", [](const std::filesystem::path& log) { std::filesystem::resize_file(log, 1000); }},
    {"is_emptied", [](const std::filesystem::path& log) { std::filesystem::resize_file(log, 0); }},
    {"is_replaced",
     [](const std::filesystem::path& log) {
       auto other = log;
       other += ".new";
       std::ofstream(other, std::ios::binary) << logLines("(000002)");
       std::filesystem::rename(other, log);
     }},
    {"disappears",
     [](const std::filesystem::path& log) {
       std::error_code ignored;
       std::filesystem::remove(log, ignored);
     }},
};

class ChangingLog : public testing::TestWithParam<Change> {
 protected:
  /// From opening the log to clicking its sessions. change happens before call number n that concerns the log; the
  /// result is the number of such calls.
  int work(int n) {
    const TempFolder folder;
    folder.write("quorvel.ini", busySettings());
    folder.write("out.txt", "of an earlier run\r\n");
    const auto log = folder.write("a.log", longLog());
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
    for (const auto item : {&frmMain::mnuFilterAll_Click, &frmMain::mnuFilterSelected_Click}) {
      world.view.chooseSave(folder / "out.txt");
      (world.window.*item)();
    }
    world.window.mnuCountAllTransfers_Click();
    world.window.mnuCountUsersTransfers_Click();
    EXPECT_FALSE(world.view.isCommandRunning());
    EXPECT_FALSE(world.view.isProgressVisible());
    EXPECT_TRUE(world.view.status(StatusPanel::Text).starts_with("Using"));
    EXPECT_TRUE(folder.read("out.txt").starts_with("of an earlier run\r\n"));
    EXPECT_TRUE(folder.read("out.txt").ends_with("\r\n"));
    const std::string users = folder.read("users.qva");
    for (std::size_t at = 0; at < users.size(); at += kRecordSize)
      EXPECT_TRUE(decodeRecord(std::string_view(users).substr(at, kRecordSize)));
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
                         [](const auto& change) { return std::string(change.param.name); });

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
  folder.write("out.txt", "of an earlier run\r\n");
  first.view.chooseSave(folder / "out.txt");
  first.window.mnuFilterAll_Click();
  EXPECT_EQ(folder.read("out.txt"), "of an earlier run\r\n");
  first.window.mnuFindUsers_Click();
  first.view.forgetCalls();
  first.window.TreeView1_NodeClick(kSecondSession);
  EXPECT_TRUE(first.view.callsStartingWith("message").empty());
  EXPECT_EQ(first.window.state().currentSession.Name, "bob");
}

}  // namespace
}  // namespace quorvel::test
