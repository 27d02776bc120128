#include "app/main_window.h"

#include "tests/app/scanned_log.h"

namespace quorvel::test {
namespace {

constexpr WindowBounds kBounds{10, 20, 640, 480};

class MainWindowTest : public CommandTest {
 protected:
  frmMain window{systemFiles(), settings, view, pacer, folder.path()};
};

TEST_F(MainWindowTest, AFreshStartShowsTheVersionAndNoCommandThatNeedsSessions) {
  for (const char* boxes : {"off", "on"}) {
    view.forgetCalls();
    window.load();
    EXPECT_TRUE(view.wasCalled("tree boxes " + std::string(boxes)));
    EXPECT_TRUE(view.wasCalled("check mnuShowCheckboxesInTreeView " + std::string(boxes)));
    settings.WriteSetting("OPTION-TREEVIEW", "CheckBoxInTreeView", "1");
  }
  EXPECT_EQ(view.status(StatusPanel::Text), "Version: 1.1.400");
  EXPECT_EQ(view.status(StatusPanel::FilterOptions), "Filter options: A");
  EXPECT_TRUE(view.wasCalled("tree header \"Username\\r\\n|--Logontime\""));
  EXPECT_TRUE(view.wasCalled("progress off"));
  EXPECT_TRUE(view.wasCalled("labels off"));
  EXPECT_EQ(view.callsStartingWith("enable mnuFilter").size(), 5U);
  EXPECT_EQ(view.callsStartingWith("enable mnuCount").size(), 5U);
  for (const std::string& call : view.callsStartingWith("enable"))
    EXPECT_TRUE(call.ends_with(" off")) << call;
}

TEST_F(MainWindowTest, BoundsAreSavedWithAWindowAndUsedWhenAllAreAtLeastOne) {
  EXPECT_TRUE(window.readPlacement().isCentred) << "fresh settings hold none";
  for (const bool isMaximized : {true, false}) {
    folder.write("users.qva", "x");
    window.unload(kBounds, isMaximized);
    EXPECT_FALSE(folder.has("users.qva"));
    EXPECT_EQ(settings.ReadSetting("MAIN", "Maximized"), isMaximized ? "True" : "False");
    EXPECT_EQ(window.readPlacement().bounds, kBounds);
    EXPECT_EQ(window.readPlacement().isMaximized, isMaximized);
    EXPECT_FALSE(window.readPlacement().isCentred);
  }
  const std::string before = folder.read("quorvel.ini");
  folder.write("users.qva", "x");
  window.unload();  // a run without a window
  EXPECT_FALSE(folder.has("users.qva"));
  EXPECT_EQ(folder.read("quorvel.ini"), before);
  for (const WindowBounds& bad :
       {WindowBounds{0, 20, 640, 480}, {10, -5, 640, 480}, {10, 20, 0, 480}, {10, 20, 640, 0}}) {
    window.unload(bad, true);
    EXPECT_TRUE(window.readPlacement().isCentred);
    EXPECT_FALSE(window.readPlacement().isMaximized);
  }
}

TEST_F(MainWindowTest, ClosingStopsTheRunningCommandFirst) {
  window.openLogFile(folder.write("a.log", logLines("")));
  view.atYield(2, [this] { window.unload(kBounds, false); });
  window.mnuFindUsers_Click();
  EXPECT_EQ(view.callsStartingWith("close").size(), 1U);
  EXPECT_TRUE(window.readPlacement().isCentred) << "nothing is saved before the command has ended";
  EXPECT_TRUE(folder.has("users.qva"));
  EXPECT_EQ(window.state().tree.nodeCount(), 0);
  window.unload(kBounds, false);
  EXPECT_FALSE(folder.has("users.qva"));
}

TEST_F(MainWindowTest, AutoFilterIsReadFromOneSectionAndWrittenToAnother) {
  const std::pair<const char*, const char*> kCases[] = {{"2", ""}, {"0", "1"}, {"1", "0"}};
  for (const auto& [read, written] : kCases) {
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
