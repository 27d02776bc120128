#include "app/main_window.h"

#include <gtest/gtest.h>

#include "tests/support/recording_view.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

constexpr WindowBounds kBounds{10, 20, 640, 480};

class MainWindowTest : public testing::Test {
 protected:
  MainWindowTest() { settings.WriteDefaultSettingsFile(); }
  void save(const WindowBounds& bounds, const char* maximized) {
    settings.WriteSetting("POSITION", "MainTop", std::to_string(bounds.top));
    settings.WriteSetting("POSITION", "MainLeft", std::to_string(bounds.left));
    settings.WriteSetting("POSITION", "MainWidth", std::to_string(bounds.width));
    settings.WriteSetting("POSITION", "MainHeight", std::to_string(bounds.height));
    settings.WriteSetting("MAIN", "Maximized", maximized);
  }

  TempFolder folder;
  Settings settings{systemFiles(), folder.path()};
  RecordingView view;
  Pacer pacer{Pacer::Clock::duration::zero()};
  frmMain window{systemFiles(), settings, view, pacer, folder.path()};
};

TEST_F(MainWindowTest, AFreshStartShowsTheVersionAndNoCommandThatNeedsSessions) {
  window.load();
  EXPECT_EQ(view.status(StatusPanel::Text), "Version: 1.1.400");
  EXPECT_EQ(view.status(StatusPanel::FilterOptions), "Filter options: A");
  EXPECT_TRUE(view.wasCalled("tree header \"Username\\r\\n|--Logontime\""));
  EXPECT_TRUE(view.wasCalled("progress off"));
  EXPECT_TRUE(view.wasCalled("labels off"));
  EXPECT_EQ(view.callsStartingWith("enable").size(), 10U);
  for (const MenuItem item :
       {MenuItem::mnuFilterAll, MenuItem::mnuFilterSelected, MenuItem::mnuFilterIP, MenuItem::mnuFilterUser,
        MenuItem::mnuFilterSession, MenuItem::mnuCountAllTransfers, MenuItem::mnuCountSelectedSessions,
        MenuItem::mnuCountIPTransfers, MenuItem::mnuCountUsersTransfers, MenuItem::mnuCountSessionsTransfers})
    EXPECT_FALSE(view.isEnabled(item)) << menuItemName(item);
}

TEST_F(MainWindowTest, CheckBoxesStartAsTheyWereLeft) {
  for (const bool shown : {false, true}) {
    settings.WriteSetting("OPTION-TREEVIEW", "CheckBoxInTreeView", shown ? "1" : "0");
    window.load();
    EXPECT_EQ(window.state().showsCheckBoxes, shown);
    EXPECT_EQ(view.isChecked(MenuItem::mnuShowCheckboxesInTreeView), shown);
    EXPECT_TRUE(view.wasCalled(shown ? "tree boxes on" : "tree boxes off"));
  }
}

TEST_F(MainWindowTest, BoundsAreUsedOnlyWhenAllAreAtLeastOne) {
  EXPECT_TRUE(window.readPlacement().isCentred) << "fresh settings hold none";
  save(kBounds, "True");
  EXPECT_EQ(window.readPlacement().bounds, kBounds);
  EXPECT_TRUE(window.readPlacement().isMaximized);
  EXPECT_FALSE(window.readPlacement().isCentred);
  for (const WindowBounds& bad :
       {WindowBounds{0, 20, 640, 480}, {10, -5, 640, 480}, {10, 20, 0, 480}, {10, 20, 640, 0}}) {
    save(bad, "True");
    EXPECT_TRUE(window.readPlacement().isCentred);
    EXPECT_FALSE(window.readPlacement().isMaximized);
  }
}

TEST_F(MainWindowTest, UnloadingSavesTheBoundsAndDeletesTheUsersFile) {
  folder.write("users.qva", "x");
  window.unload(kBounds, true);
  EXPECT_FALSE(folder.has("users.qva"));
  EXPECT_EQ(settings.ReadSetting("MAIN", "Maximized"), "True");
  EXPECT_EQ(window.readPlacement().bounds, kBounds);
  window.unload(kBounds, false);
  EXPECT_FALSE(window.readPlacement().isMaximized);
}

TEST_F(MainWindowTest, ARunWithoutAWindowKeepsTheBoundsSaved) {
  folder.write("users.qva", "x");
  save(kBounds, "True");
  const std::string before = folder.read("quorvel.ini");
  window.unload();
  EXPECT_FALSE(folder.has("users.qva"));
  EXPECT_EQ(folder.read("quorvel.ini"), before);
}

TEST_F(MainWindowTest, ClosingStopsTheRunningCommandFirst) {
  const auto log = folder.write("a.log", "Wed 19Jan05 13:28:01 - (000001) Connected to 10.0.0.5 (x)\r\n");
  window.openLogFile(log);
  view.atYield(2, [this] { window.unload(kBounds, false); });
  window.mnuFindUsers_Click();
  EXPECT_EQ(view.callsStartingWith("close").size(), 1U);
  EXPECT_TRUE(window.readPlacement().isCentred) << "nothing is saved before the command has ended";
  EXPECT_TRUE(folder.has("users.qva"));
  EXPECT_EQ(window.state().tree.nodeCount(), 0);
  window.unload(kBounds, false);
  EXPECT_FALSE(folder.has("users.qva"));
}

TEST_F(MainWindowTest, StopOnlySetsTheFlag) {
  window.mnuStop_Click();
  EXPECT_TRUE(window.state().stopFlag);
  EXPECT_TRUE(view.calls().empty());
}

TEST_F(MainWindowTest, AutoFilterIsReadFromOneSectionAndWrittenToAnother) {
  const std::pair<const char*, const char*> kCases[] = {{"0", "1"}, {"1", "0"}, {"2", ""}};
  for (const auto& [read, written] : kCases) {
    settings.WriteDefaultSettingsFile();
    settings.WriteSetting("OPTION-FILTER", "AutoFilterSession", read);
    view.forgetCalls();
    window.toggleAutoFilter();
    EXPECT_EQ(settings.ReadSetting("OPTION_FILTER", "AutoFilterSession"), written) << read;
    EXPECT_EQ(settings.ReadSetting("OPTION-FILTER", "AutoFilterSession"), read);
    EXPECT_EQ(view.callsStartingWith("status 4").size(), 1U);
  }
}

TEST_F(MainWindowTest, EachLayoutItemChoosesItsLayout) {
  using Click = void (frmMain::*)();
  const std::pair<Click, std::string> kItems[] = {{&frmMain::mnuShowUsernameIP_Click, "1"},
                                                  {&frmMain::mnuShowIPUsername_Click, "2"},
                                                  {&frmMain::mnuShowIPLogontime_Click, "3"},
                                                  {&frmMain::mnuShowUsernameLogontime_Click, "0"}};
  for (const auto& [click, layout] : kItems) {
    window.TreeView1_RightButton();
    (window.*click)();
    EXPECT_EQ(settings.ReadSetting("OPTION-TREEVIEW", "TreeViewType"), layout);
  }
}

TEST_F(MainWindowTest, TheWebCommandsHandOutAddresses) {
  window.mnuWebVisitWebsite_Click();
  window.mnuWebSendEmail_Click();
  window.mnuWebReportBug_Click();
  EXPECT_EQ(view.calls(), (std::vector<std::string>{
                              "address \"https://quorvel.example.org/\"",
                              "address \"mailto:support@quorvel.example.org\"",
                              "address \"mailto:support@quorvel.example.org?Subject=Quorvel analyzer - Bug"
                              "&Body=Version: 1.1.400   Decsribe the bug below:\"",
                          }));
}

}  // namespace
}  // namespace quorvel::test
