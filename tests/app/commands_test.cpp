// What the scripts of this folder cannot tell in a few lines.
#include <gtest/gtest.h>

#include <array>
#include <random>

#include "app/find_users_command.h"
#include "app/help_text.h"
#include "app/tree_commands.h"
#include "core/record_format.h"
#include "tests/app/scanned_log.h"
#include "tests/support/memory_files.h"
#include "tools/command_line_reference.h"

namespace quorvel::test {
namespace {

TEST(HelpText, IsTheFirstFileFoundOrTheProgramsOwn) {
  MemoryFiles files;
  const std::array<std::filesystem::path, 2> folders{"first", "second"};
  EXPECT_EQ(commandLineReferenceText(files, folders), commandLineReference());
  files.put("second/CLA_ref.txt", "second");
  EXPECT_EQ(commandLineReferenceText(files, folders), "second");
  files.put("first/CLA_ref.txt", "first");
  EXPECT_EQ(commandLineReferenceText(files, folders), "first");
}

TEST_F(ScannedLogTest, AScanYieldsByTheClock) {
  Pacer patient{std::chrono::hours(1)};
  EXPECT_TRUE(patient.isDue());
  CommandContext context{systemFiles(), settings, state, view, patient};
  const int yields = view.yieldCount();
  findUsers(context);
  EXPECT_EQ(view.yieldCount(), yields);
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

/// A users file of sessions with these names, of any nodes; numbers and addresses tell which is which.
std::string usersOf(const std::vector<std::string>& names) {
  std::string bytes(names.size() * kRecordSize, '\0');
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    const UserAct record{
        0, names[i], "(" + number + ")", "10.0.0." + number, "", "T" + number, "", 0, static_cast<std::int32_t>(i % 5)};
    EXPECT_NE(encodeRecord(record, std::span(bytes).subspan(i * kRecordSize)), 0u);
  }
  return bytes;
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

TEST_F(ScannedLogTest, ClicksAgreeWithReadingRecordAfterRecord) {
  settings.WriteSetting("OPTION-FILTER", "AutoFilterSession", "0");
  const auto set = [this](const char* key, unsigned value) {
    settings.WriteSetting("OPTION-TREEVIEW", key, std::to_string(value));
  };
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    std::mt19937 random(seed);
    std::vector<std::string> names(2 + random() % 30);
    for (std::string& name : names)
      name = std::array{"ann", "bob", "QUIT", "QUIT", "12", ""}[random() % 6];
    set("DisplayQUITUsers", seed % 2);
    set("TreeViewType", random() % 4);
    folder.write("users.qva", usersOf(names));
    buildSessionTree(window.context());
    set("TreeViewType", random() % 4);
    const int stopAfter = 1 + static_cast<int>(random() % names.size());  // the rest keeps the first build's indexes
    view.atYield(view.yieldCount() + stopAfter, [&] { state.stopFlag = true; });
    buildSessionTree(window.context());

    if (seed % 3 == 1) folder.write("users.qva", usersOf(names));  // a second program on the same files
    if (seed % 3 == 2) folder.write("users.qva", usersOf({"shorter"}));
    auto users = UsersFile::open(systemFiles(), state.usersFilePath());
    for (std::int32_t node = 1; node <= state.tree.nodeCount(); ++node) {
      state.currentSession = {};
      clickNode(window.context(), node);
      EXPECT_EQ(state.currentSession.NumberInLog, readUntilFound(users.value(), state.tree.nodeCount(), node))
          << "seed " << seed << ", node " << node;
    }
  }
}

TEST_F(ScannedLogTest, TickedSessionsAreTheFirstRecordsOfTheirNodesInWhateverFileIsThere) {
  state.showsCheckBoxes = true;
  window.TreeView1_NodeClick(kFirstSession);
  state.tree.setChecked(kThirdSession, true);
  auto users = UsersFile::open(systemFiles(), state.usersFilePath(), OpenMode::ReadWrite);
  for (const std::int32_t record : {1, 2})
    users.value().setTreeIndex(record, kThirdSession);
  users.value().setTreeIndex(3, 0);
  ASSERT_TRUE(users.value().flush().isOk());
  view.choose(folder / "out.txt");
  window.mnuFilterSelected_Click();
  EXPECT_EQ(folder.read("filter.qva"), logLines("(000001)"));
}

}  // namespace
}  // namespace quorvel::test
