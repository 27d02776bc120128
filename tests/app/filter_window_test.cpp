#include "tests/app/scanned_log.h"

namespace quorvel::test {
namespace {

using FilterWindow = ScannedLogTest;

TEST_F(FilterWindow, ShowsASessionFromMemoryUntilTheLogChanges) {
  folder.write("filter.qva", "of an earlier run");
  window.TreeView1_NodeClick(kSecondSession);
  EXPECT_EQ(view.filterText(), logLines("(000002)"));
  EXPECT_FALSE(folder.has("filter.qva"));

  const auto time = std::filesystem::last_write_time(state.logPath);
  folder.write("a.log", std::string(std::filesystem::file_size(state.logPath), ' '));
  std::filesystem::last_write_time(state.logPath, time);
  window.mnuFilterSession_Click();
  EXPECT_EQ(view.filterText(), logLines("(000002)")) << "looked the same, was not read";
  std::filesystem::last_write_time(state.logPath, time + std::chrono::seconds(1));
  window.mnuFilterSession_Click();
  EXPECT_EQ(view.filterText(), "");
}

TEST_F(FilterWindow, GetsALongTextInPieces) {
  const std::string text = logLines("(000001) Connected") + "(000001) " + std::string(3'000'000, 'x') + "\r\n";
  folder.write("a.log", text);
  view.forgetCalls();
  window.TreeView1_NodeClick(kFirstSession);
  EXPECT_EQ(view.filterText(), text);
  EXPECT_GT(view.callsStartingWith("filter append").size(), 5u);
}

TEST_F(FilterWindow, SelectedSessionsAreTheFirstRecordsOfTheirNodesInWhateverFileIsThere) {
  state.showsCheckBoxes = true;
  window.TreeView1_NodeClick(kFirstSession);
  state.tree.setChecked(kThirdSession, true);
  auto users = UsersFile::open(systemFiles(), state.usersFilePath(), OpenMode::ReadWrite);
  for (const std::int32_t record : {1, 2})
    users.value().setTreeIndex(record, kThirdSession);
  users.value().setTreeIndex(3, 0);
  ASSERT_TRUE(users.value().flush().isOk());
  view.chooseSave(folder / "out.txt");
  window.mnuFilterSelected_Click();
  EXPECT_EQ(folder.read("filter.qva"), logLines("(000001)"));
}

}  // namespace
}  // namespace quorvel::test
