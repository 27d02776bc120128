// What the scripts of this folder cannot tell in a few lines.
#include <gtest/gtest.h>

#include <array>
#include <random>

#include "app/session_sources.h"
#include "classic/find/record_format.h"
#include "tests/support/program_world.h"
#include "tests/support/sample_log.h"

namespace quorvel::test {
namespace {

TEST_F(ScannedLogTest, AScanYieldsByTheClock) {
  pacer = Pacer(std::chrono::hours(1));
  const int yields = view.yieldCount();
  window.mnuFindUsers_Click();
  EXPECT_EQ(view.yieldCount(), yields + 1);
}

TEST_F(ScannedLogTest, ALongTextIsFilteredInPieces) {
  const std::string text = logLines("(000002) Connected") + "(000002) " + std::string(3'000'000, 'x') + "\r\n";
  folder.write("a.log", std::string(150, ' ') + "\r\n" + text);
  window.TreeView1_NodeClick(kSecondSession);
  EXPECT_EQ(view.filterText(), text);
  EXPECT_GT(view.callsStartingWith("filter append").size(), 5u);
  view.choose(folder / "out.txt");
  window.mnuFilterUser_Click();
  EXPECT_TRUE(folder.read("out.txt").ends_with("\r\n\r\n" + text + "\r\n\r\n\r\n\r\n"));
  EXPECT_TRUE(folder.read("filter.qva") == text);
}

/// The rule of a click as it is told: read record after record. The number of the session that is shown.
std::string readUntilFound(UsersFile& users, std::int32_t nodeCount, std::int32_t node) {
  UserAct shown;
  std::int32_t recordNumber = 1;
  while (const UserAct* const record = users.read(recordNumber)) {
    shown = *record;
    if (record->TreeIndex == node || ++recordNumber > nodeCount) break;
  }
  return shown.NumberInLog;
}

TEST_F(ScannedLogTest, ClicksAndTicksAgreeWithReadingRecordAfterRecord) {
  settings.WriteSetting("OPTION-FILTER", "AutoFilterSession", "0");
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::uint_fast32_t sessions = 2 + random() % 30;
    constexpr std::array kNames = {"ann", "bob", "QUIT", "QUIT", "12"};
    std::string log;
    for (std::uint_fast32_t n = 1; n <= sessions; ++n)
      log += logSession(std::to_string(100'000 + n), kNames[random() % kNames.size()], "::1");
    folder.write("a.log", log);
    settings.WriteSetting("OPTION-TREEVIEW", "DisplayQUITUsers", std::to_string(seed % 2));
    settings.WriteSetting("OPTION-TREEVIEW", "TreeViewType", std::to_string(random() % 4));
    scan();
    settings.WriteSetting("OPTION-TREEVIEW", "TreeViewType", std::to_string(random() % 4));
    const int stopAfter = 1 + static_cast<int>(random() % sessions);  // the rest keeps the first build's indexes
    view.atYield(view.yieldCount() + stopAfter, [this] { window.mnuStop_Click(); });
    window.mnuReloadTreeView_Click();

    if (seed % 3 == 0)
      folder.write("users.qva", folder.read("users.qva").substr(0, kRecordSize));  // by a second program
    auto users = std::move(UsersFile::open(systemFiles(), state.usersFilePath(), OpenMode::ReadWrite).value());
    for (std::int32_t n = 1; seed % 3 == 1 && n <= users.recordCount(); ++n)
      users.setTreeIndex(n, 0);  // as when it has just searched the log
    EXPECT_TRUE(users.flush().isOk());
    std::string firstOfEach;
    for (std::int32_t node = 1; node <= state.tree.nodeCount(); ++node) {
      window.TreeView1_NodeClick(node);
      EXPECT_EQ(state.currentSession.NumberInLog, readUntilFound(users, state.tree.nodeCount(), node)) << node;
      state.tree.setChecked(node, true);
      std::int32_t first = 1;
      while (first <= users.recordCount() && users.read(first)->TreeIndex != node)
        ++first;
      if (first <= users.recordCount()) firstOfEach += users.read(first)->NumberInLog;
    }
    std::string filtered;
    const auto checked = checkedSessions(users, state.tree);
    for (std::size_t i = 0; i < checked->size(); ++i)
      filtered += checked->session(i).NumberInLog;
    EXPECT_EQ(filtered, firstOfEach);
  }
}

TEST_F(ScannedLogTest, AStoppedCountSaysSoAndWritesNothingUnattended) {
  const std::string session = logSession("000001", "alice", "10.0.0.5");
  folder.write("a.log", session + std::string(1'000'000, 'x') + "\r\n" + session);
  scan();
  window.TreeView1_NodeClick(2);
  const std::string incomplete = " - incomplete, 26 %\"";
  for (void (frmMain::*const command)() : {&frmMain::mnuCountAllTransfers_Click, &frmMain::mnuCountIPTransfers_Click}) {
    view.forgetCalls();
    view.atYield(view.yieldCount() + 1, [this] { window.mnuStop_Click(); });
    (window.*command)();
    const auto results = view.callsStartingWith("counter result");
    ASSERT_EQ(results.size(), 1u);
    EXPECT_NE(results[0].find(incomplete), std::string::npos) << results[0];
  }
  state.batchFlag = true;
  state.batchOutputFile = folder / "out.txt";
  view.atYield(view.yieldCount() + 1, [this] { window.mnuStop_Click(); });
  window.mnuCountAllTransfers_Click();
  EXPECT_FALSE(folder.has("out.txt"));
}

}  // namespace
}  // namespace quorvel::test
