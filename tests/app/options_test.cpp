#include "app/options.h"

#include <gtest/gtest.h>

#include "app/main_window_state.h"
#include "tests/support/recording_view.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

constexpr int kFilterPage = 0;
constexpr int kShortInfoPage = 1;
constexpr int kSavePage = 2;
constexpr int kTreeViewPage = 3;
constexpr int kCommandLinePage = 5;

class Options : public ::testing::Test {
 protected:
  Options() {
    settings.prepareFile();
    settings.resetOtherVersion();
    state.programFolder = folder.path();
    folder.write("users.qva", "");
  }

  std::string filterKeys() const {
    std::string values;
    for (const char* key : {"FilterEntireSession", "FilterTransfers", "FilterDeletes", "FilterMDTM", "FilterSITE"})
      values += settings.ReadSetting("OPTION-FILTER", key);
    return values;
  }
  /// The visible boxes' states, "-" behind a disabled one.
  std::string boxes() const {
    std::string text;
    for (const CheckBoxControl& box : form.controls().chkOption) {
      if (box.isVisible) text += std::to_string(static_cast<int>(box.value)) + (box.isEnabled ? "" : "-");
    }
    return text;
  }
  bool asksForTreeUpdate() {
    form.cmdOK_Click();
    return !view.messages().empty();
  }

  TempFolder folder;
  Settings settings{systemFiles(), folder.path()};
  MainWindowState state;
  RecordingView view;
  Pacer pacer;
  CommandContext context{systemFiles(), settings, state, view, pacer};
  frmOption form{context};
};

TEST_F(Options, FreshSettingsFillEveryPage) {
  form.Form_Load();
  const std::array<std::string, frmOption::kPageCount> expected = {"112-2-2-2-1", "11111110", "1", "01", "10", "1"};
  for (int page = 0; page < frmOption::kPageCount; ++page) {
    if (page > 0) form.lstSelectOption_Click(page);
    EXPECT_EQ(boxes(), expected[static_cast<std::size_t>(page)]) << page;
    EXPECT_EQ(form.controls().footnote.isVisible, page == kFilterPage);
    EXPECT_EQ(form.controls().optOption[3].isVisible, page == kTreeViewPage);
    EXPECT_FALSE(form.controls().optOption[4].isVisible);
    EXPECT_FALSE(form.controls().comboBox.isVisible);
  }
}

TEST_F(Options, LeavingEveryPageUntouchedChangesNothing) {
  const std::string before = folder.read("quorvel.ini");
  form.Form_Load();
  for (int page = 1; page < frmOption::kPageCount; ++page)
    form.lstSelectOption_Click(page);
  form.cmdOK_Click();
  EXPECT_EQ(folder.read("quorvel.ini"), before);
  EXPECT_TRUE(view.messages().empty());
}

TEST_F(Options, FilterEntireSessionCoversTheFourOthers) {
  form.Form_Load();
  form.chkOption_Click(1);
  EXPECT_EQ(boxes(), "1000001");
  form.chkOption_Click(4);
  EXPECT_EQ(boxes(), "1000101");
  form.chkOption_Click(1);
  EXPECT_EQ(boxes(), "112-2-2-2-1");
  form.chkOption_Click(4);
  EXPECT_EQ(boxes(), "112-2-2-2-1") << "a disabled box was clicked";
  form.cmdOK_Click();
  EXPECT_EQ(filterKeys(), "12222");
}

TEST_F(Options, ClearedFilterKeysAreStored) {
  form.Form_Load();
  form.chkOption_Click(1);
  form.chkOption_Click(3);
  form.cmdOK_Click();
  EXPECT_EQ(filterKeys(), "00100");
}

TEST_F(Options, StoredTwoLocksOnlyRowsThatMayBeLocked) {
  settings.WriteSetting("OPTION-FILTER", "AutoFilterSession", "2");
  settings.WriteSetting("MAIN", "TrunkLongUsernames", "2");
  form.Form_Load();
  EXPECT_EQ(boxes(), "212-2-2-2-2-");
  form.chkOption_Click(0);
  EXPECT_EQ(boxes(), "012-2-2-2-2-");
}

TEST_F(Options, GarbledValuesReadAsTheirDefaults) {
  settings.WriteSetting("OPTION-FILTER", "AutoFilterSession", "");
  settings.WriteSetting("OPTION-FILTER", "FilterTransfers", "yes");
  settings.WriteSetting("OPTION-FILTER", "FilterDeletes", "7");
  form.Form_Load();
  EXPECT_EQ(boxes(), "112-12-2-1");
}

TEST_F(Options, PagesLeftBeforeAreSavedWithoutOk) {
  form.Form_Load();
  form.lstSelectOption_Click(kShortInfoPage);
  form.chkOption_Click(7);
  form.lstSelectOption_Click(kSavePage);
  form.chkOption_Click(0);  // and now Cancel
  EXPECT_EQ(settings.ReadSetting("OPTION-SAVE-SHORT-INFO", "SaveTreeIndex"), "1");
  EXPECT_EQ(settings.ReadSetting("OPTION-SAVE", "AppendWhenFilter"), "1");
}

TEST_F(Options, AnotherLayoutAsksForTheTree) {
  form.Form_Load();
  form.lstSelectOption_Click(kTreeViewPage);
  form.optOption_Click(2);
  view.answerMessage(false);
  EXPECT_TRUE(asksForTreeUpdate());
  EXPECT_EQ(settings.ReadSetting("OPTION-TREEVIEW", "TreeViewType"), "2");
  EXPECT_EQ(view.callsStartingWith("tree header").size(), 1U);
}

TEST_F(Options, TheLayoutStoredAsksNothing) {
  form.Form_Load();
  form.lstSelectOption_Click(kTreeViewPage);
  form.optOption_Click(1);
  form.optOption_Click(0);
  EXPECT_FALSE(asksForTreeUpdate());
  EXPECT_FALSE(view.callsStartingWith("status 4").empty()) << "the filter summary is written in any case";
}

TEST_F(Options, QuitUsersAskForTheTreeFromAnotherPageToo) {
  form.Form_Load();
  form.lstSelectOption_Click(kTreeViewPage);
  form.chkOption_Click(5);
  form.lstSelectOption_Click(kCommandLinePage);
  view.answerMessage(false);
  EXPECT_TRUE(asksForTreeUpdate());
  EXPECT_EQ(settings.ReadSetting("OPTION-TREEVIEW", "DisplayQUITUsers"), "0");
}

TEST_F(Options, CheckBoxesOfTheTreeAppearAtOnce) {
  form.Form_Load();
  form.lstSelectOption_Click(kTreeViewPage);
  form.chkOption_Click(4);
  form.lstSelectOption_Click(kFilterPage);
  EXPECT_TRUE(view.wasCalled("tree boxes on"));
  EXPECT_TRUE(state.showsCheckBoxes);
}

TEST_F(Options, AnUnknownLayoutStaysUntilOneIsChosen) {
  settings.WriteSetting("OPTION-TREEVIEW", "TreeViewType", "9");
  form.Form_Load();
  form.lstSelectOption_Click(kTreeViewPage);
  EXPECT_FALSE(asksForTreeUpdate());
  EXPECT_EQ(settings.ReadSetting("OPTION-TREEVIEW", "TreeViewType"), "9");
}

TEST_F(Options, TheBufferPageShowsTheSizeAndSavesNothing) {
  settings.WriteSetting("OPTION-FIND-USER", "FindUserBuffer", "16000");
  const std::string before = folder.read("quorvel.ini");
  form.loadFindUserinfoOptions();
  EXPECT_EQ(form.controls().comboBox.selected, 3);
  EXPECT_TRUE(form.controls().footnote.text.starts_with("Standard: 4000 bytes\r\nWhen Quorvel"));
  EXPECT_EQ(boxes(), "");
  form.saveOptions();
  EXPECT_EQ(folder.read("quorvel.ini"), before);
}

}  // namespace
}  // namespace quorvel::test
