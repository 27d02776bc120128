#include "app/tree_commands.h"

#include <random>

#include "tests/app/scanned_log.h"

namespace quorvel::test {
namespace {

using Calls = std::vector<std::string>;

class TreeCommandsTest : public CommandTest {
 protected:
  TreeCommandsTest() { settings.WriteSetting("OPTION-FILTER", "AutoFilterSession", "0"); }
  void set(std::string_view key, std::string_view value) { settings.WriteSetting("OPTION-TREEVIEW", key, value); }
  [[nodiscard]] std::string setting(std::string_view key) const { return settings.ReadSetting("OPTION-TREEVIEW", key); }

  void write(const std::vector<std::string>& names) {
    (void)systemFiles().remove(state.usersFilePath());
    UsersFileWriter writer(systemFiles(), state.usersFilePath(),
                           [](const UserAct&, std::int32_t, const Error&) { FAIL(); });
    for (const std::string& name : names) {
      UserAct record;
      record.Name = name;
      record.LogonNo = static_cast<std::int32_t>(&name - names.data()) + 1;
      record.Position = record.LogonNo * 100;
      record.IP = "10.0.0." + std::to_string(record.LogonNo);
      record.LogonTime = "T" + std::to_string(record.LogonNo);
      writer.WriteSessionRecord(record, record.LogonNo);
    }
  }
  void writeAndBuild(const std::vector<std::string>& names) {
    write(names);
    buildSessionTree(context);
    view.forgetCalls();
  }
  /// Number of the session that a click on the node shows.
  [[nodiscard]] std::int32_t shownBy(std::int32_t node) {
    state.currentSession = {};
    clickNode(context, node);
    return state.currentSession.LogonNo;
  }
};

TEST_F(TreeCommandsTest, BuildingHidesTheTreeAndEndsProperlyWithoutALayoutOrAUsersFile) {
  write({"ann"});
  buildSessionTree(context);
  EXPECT_EQ(view.calls(),
            (Calls{"tree enabled off", "status 1 \"Adding to treeview\"", "tree visible off", "tree about to change",
                   "yield", "tree changed", "tree visible on", "status 1 \"Using: a.log\"", "tree enabled on"}));
  EXPECT_EQ(state.tree.text(2), "T1");

  state.selectedNode = 2;
  set("TreeViewType", "4");
  view.forgetCalls();
  buildSessionTree(context);
  EXPECT_EQ(state.tree.nodeCount(), 2) << "an unknown layout leaves the tree";
  EXPECT_EQ(state.selectedNode, 2);
  EXPECT_FALSE(view.wasCalled("tree changed"));
  EXPECT_EQ(view.calls().back(), "tree enabled on");

  set("TreeViewType", "1");
  std::filesystem::remove(state.usersFilePath());
  buildSessionTree(context);
  EXPECT_EQ(state.tree.nodeCount() + state.selectedNode, 0);
  EXPECT_EQ(view.status(StatusPanel::Text), "Using: a.log");
  EXPECT_FALSE(std::filesystem::exists(state.usersFilePath()));
}

TEST_F(TreeCommandsTest, QuitSessionsAreShownForTheTextOneOrNoNumber) {
  const std::map<std::string, std::int32_t> nodeCounts = {{"1", 2}, {"0", 0}, {"2", 0}, {"01", 0}, {"", 2}, {"x", 2}};
  for (const auto& [value, nodeCount] : nodeCounts) {
    set("DisplayQUITUsers", value);
    writeAndBuild({"QUIT"});
    EXPECT_EQ(state.tree.nodeCount(), nodeCount) << '"' << value << '"';
  }
}

TEST_F(TreeCommandsTest, StopEndsABuildAfterTheCurrentRecord) {
  write({"ann", "bob", "carl"});
  std::optional<std::int32_t> indexAtYield;
  view.atYield(2, [&] {
    indexAtYield = UsersFile::open(systemFiles(), state.usersFilePath()).value().treeIndex(2);
    state.stopFlag = true;
  });
  reloadTree(context);
  EXPECT_EQ(indexAtYield, 4) << "what is done is in the file when the interface runs";
  EXPECT_EQ(state.tree.nodeCount(), 4);
  EXPECT_FALSE(state.stopFlag);
  EXPECT_EQ(view.status(StatusPanel::Text), "Using: a.log");
}

TEST_F(TreeCommandsTest, NothingStartsWhileACommandRuns) {
  writeAndBuild({"ann", "bob"});
  view.atYield(view.yieldCount() + 1, [&] {
    const auto before = view.calls().size();
    state.keptLayout = "0";
    reloadTree(context);
    clickNode(context, 2);
    openTreePopUp(context);
    chooseLayout(context, 3);
    EXPECT_EQ(view.calls().size(), before);
  });
  reloadTree(context);
  EXPECT_EQ(state.selectedNode, 0);
  EXPECT_EQ(setting("TreeViewType"), "0");
  EXPECT_FALSE(state.commandRunning);
  EXPECT_EQ(view.callsStartingWith("running"), (Calls{"running on", "running off"}));
}

TEST_F(TreeCommandsTest, AClickShowsTheSessionOrReportsALostUsersFile) {
  const UserAct record{345, "ann", "(000012)", "10.0.0.1", "C", "L", "O", 1, 2};
  UsersFileWriter(systemFiles(), state.usersFilePath(), {}).WriteSessionRecord(record, 1);
  buildSessionTree(context);
  clickNode(context, 2);
  EXPECT_EQ(view.userInfo(),
            "Username:   ann\r\nFrom IP:    10.0.0.1\r\nConnected:  C\r\nLogged in:  L\r\nLogged out: O\r\n"
            "No. in log: (000012)\r\nPos in log: 345");
  EXPECT_EQ(state.selectedNode, 2);
  EXPECT_EQ(state.currentSession, record);

  view.forgetCalls();
  folder.write("users.qva", "");
  clickNode(context, 2);
  EXPECT_TRUE(view.callsStartingWith("info").empty()) << "an empty file has no session to show";
  EXPECT_TRUE(view.messages().empty());
  std::filesystem::remove(state.usersFilePath());
  clickNode(context, 2);
  EXPECT_EQ(message(),
            "Lost file: users.qva\r\nThis might happen if you tried to run multiple instanses of Quorvel analyzer\r\n"
            "Please run \"Find users in logfile\" in the \"Command\" menu or press Ctrl-U again");
  EXPECT_EQ(view.messages().size(), 1u);
}

using AutoFilterTest = ScannedLogTest;

TEST_F(AutoFilterTest, AClickFiltersTheSessionForTheValueOneOnly) {
  for (const std::string value : {"0", "2", "1"}) {
    settings.WriteSetting("OPTION-FILTER", "AutoFilterSession", value);
    clickNode(context, kSecondSession);
    EXPECT_EQ(view.filterText(), value == "1" ? logLines("(000002)") : "") << value;
  }
}

/// The rule of a click as it is told: read record after record.
std::int32_t readUntilFound(UsersFile& users, std::int32_t nodeCount, std::int32_t node) {
  std::int32_t recordNumber = 1;
  std::int32_t shown = 0;
  while (const auto record = users.read(recordNumber)) {
    shown = recordNumber++;
    if (record->TreeIndex == node || recordNumber > nodeCount) break;
  }
  return shown;
}

TEST_F(TreeCommandsTest, ClicksAgreeWithReadingRecordAfterRecord) {
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    std::mt19937 random(seed);
    std::vector<std::string> names(2 + random() % 30);
    for (std::string& name : names)
      name = std::array{"ann", "bob", "QUIT", "QUIT", "12", ""}[random() % 6];
    set("DisplayQUITUsers", seed % 2 == 0 ? "0" : "1");
    set("TreeViewType", std::to_string(random() % 4));
    writeAndBuild(names);
    set("TreeViewType", std::to_string(random() % 4));
    const int stopAfter = 1 + static_cast<int>(random() % names.size());  // the rest keeps the first build's indexes
    view.atYield(view.yieldCount() + stopAfter, [&] { state.stopFlag = true; });
    buildSessionTree(context);

    if (seed % 3 == 1) write(names);  // a second program on the same files
    if (seed % 3 == 2) write({"shorter"});
    auto users = UsersFile::open(systemFiles(), state.usersFilePath());
    for (std::int32_t node = 1; node <= state.tree.nodeCount(); ++node)
      EXPECT_EQ(shownBy(node), readUntilFound(users.value(), state.tree.nodeCount(), node))
          << "seed " << seed << ", node " << node;
  }
}

TEST_F(TreeCommandsTest, ThePopUpMenuMarksWhatTheSettingsSay) {
  set("TreeViewType", "2");
  openTreePopUp(context);
  EXPECT_EQ(view.calls(), (Calls{"check mnuShowIPUsername on", "check mnuShowCheckboxesInTreeView off",
                                 "enable mnuTreeViewUncheckAll02 off", "pop up"}));
  view.forgetCalls();
  chooseLayout(context, 2);  // the one in use
  EXPECT_EQ(view.calls(), (Calls{"running on", "check mnuShowUsernameLogontime off", "check mnuShowUsernameIP off",
                                 "check mnuShowIPLogontime off", "running off"}));
  set("CheckBoxInTreeView", "7");
  set("TreeViewType", "9");
  view.forgetCalls();
  openTreePopUp(context);
  EXPECT_EQ(view.calls(),
            (Calls{"check mnuShowCheckboxesInTreeView on", "enable mnuTreeViewUncheckAll02 on", "pop up"}));
}

TEST_F(TreeCommandsTest, ChoosingAnotherLayoutAsksAndRebuilds) {
  writeAndBuild({"ann"});
  for (const bool isWanted : {false, true}) {
    state.keptLayout = "0";
    view.answerMessage(isWanted);
    chooseLayout(context, 2);
    EXPECT_EQ(setting("TreeViewType"), "2");
    EXPECT_EQ(state.tree.text(1), isWanted ? "10.0.0.1" : "ann");
    EXPECT_EQ(view.callsStartingWith("tree header").back(), "tree header \"IP\\r\\n|--Username\"");
  }
  const Message& question = view.messages().back();
  EXPECT_EQ(question.text,
            "You have chosen to change the layout of the TreeView\r\nDo you want to have the TreeView updated?");
  EXPECT_EQ(question.title, "Quorvel analyzer - update TreeView?");
  EXPECT_EQ(question.buttons, Buttons::YesNo);
}

TEST_F(TreeCommandsTest, WithoutAUsersFileNothingIsAskedOrReloaded) {
  state.keptLayout = "0";
  chooseLayout(context, 3);
  reloadTree(context);
  EXPECT_TRUE(view.messages().empty());
  EXPECT_EQ(setting("TreeViewType"), "3");
  EXPECT_TRUE(view.wasCalled("tree header \"IP\\r\\n|--Logontime\""));
  EXPECT_FALSE(view.wasCalled("tree enabled off"));
  set("TreeViewType", "-1");
  writeLayoutHeader(context);
  EXPECT_EQ(view.callsStartingWith("tree header").size(), 1u) << "an unknown layout keeps the header";
}

TEST_F(TreeCommandsTest, CheckBoxesAreToggledAndCleared) {
  writeAndBuild({"ann"});
  for (const bool on : {true, false}) {
    toggleTreeCheckBoxes(context);
    EXPECT_EQ(setting("CheckBoxInTreeView"), on ? "1" : "0");
    EXPECT_EQ(state.showsCheckBoxes, on);
    EXPECT_EQ(view.isChecked(MenuItem::mnuShowCheckboxesInTreeView), on);
    EXPECT_EQ(view.calls().back(), on ? "tree boxes on" : "tree boxes off");
  }
  setNodeChecked(context, 2, true);
  EXPECT_TRUE(state.tree.isChecked(2));
  uncheckAllNodes(context);
  EXPECT_FALSE(state.tree.isChecked(2));
  EXPECT_EQ(view.calls().back(), "tree checks changed");
}

}  // namespace
}  // namespace quorvel::test
