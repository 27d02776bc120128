#include "app/options.h"

#include "tests/app/scanned_log.h"

namespace quorvel::test {
namespace {

constexpr int kFilterPage = 0;
constexpr int kShortInfoPage = 1;
constexpr int kSavePage = 2;
constexpr int kTreeViewPage = 3;
constexpr int kCommandLinePage = 5;

class Options : public CommandTest {
 protected:
  Options() { folder.write("users.qva", ""); }

  [[nodiscard]] std::string filterKeys() const {
    std::string values;
    for (const char* key : {"FilterEntireSession", "FilterTransfers", "FilterDeletes", "FilterMDTM", "FilterSITE"})
      values += settings.ReadSetting("OPTION-FILTER", key);
    return values;
  }
  /// The visible boxes' states, "-" behind a disabled one.
  [[nodiscard]] std::string boxes() const {
    std::string text;
    for (const CheckBoxControl& box : form.controls().chkOption) {
      if (box.isVisible) text += std::to_string(static_cast<int>(box.value)) + (box.isEnabled ? "" : "-");
    }
    return text;
  }

  frmOption form{context};
};

TEST_F(Options, FreshSettingsFillEveryPageAndStayAsTheyAre) {
  form.Form_Load();
  const std::array<std::string, frmOption::kPageCount> expected = {"112-2-2-2-1", "11111110", "1", "01", "10", "1"};
  for (int page = 0; page < frmOption::kPageCount; ++page) {
    if (page > 0) form.lstSelectOption_Click(page);
    EXPECT_EQ(boxes(), expected[static_cast<std::size_t>(page)]) << page;
    EXPECT_EQ(form.controls().footnote.isVisible, page == kFilterPage);
    EXPECT_EQ(form.controls().optOption[3].isVisible, page == kTreeViewPage);
    EXPECT_FALSE(form.controls().comboBox.isVisible);
  }
  form.cmdOK_Click();
  EXPECT_EQ(folder.read("quorvel.ini"), defaultSettingsText());
  EXPECT_TRUE(view.messages().empty());
  EXPECT_FALSE(view.callsStartingWith("status 4").empty()) << "the filter summary is written in any case";
}

TEST_F(Options, FilterEntireSessionCoversTheFourOthers) {
  form.Form_Load();
  form.chkOption_Click(1);
  EXPECT_EQ(boxes(), "1000001");
  form.chkOption_Click(4);
  EXPECT_EQ(boxes(), "1000101");
  form.lstSelectOption_Click(kShortInfoPage);
  EXPECT_EQ(filterKeys(), "00010");
  form.lstSelectOption_Click(kFilterPage);
  form.chkOption_Click(1);
  EXPECT_EQ(boxes(), "112-2-2-2-1");
  form.chkOption_Click(4);
  EXPECT_EQ(boxes(), "112-2-2-2-1") << "a disabled box was clicked";
  form.cmdOK_Click();
  EXPECT_EQ(filterKeys(), "12222");
}

TEST_F(Options, StoredValuesDecideOnBoxesAndTheirLocks) {
  struct Case {
    const char *autoFilter, *transfers, *deletes, *trunk, *boxes;
  };
  for (const Case& c : {Case{"", "yes", "7", "1", "112-12-2-1"}, {"2", "2", "0", "2", "212-02-2-2-"}}) {
    settings.WriteSetting("OPTION-FILTER", "AutoFilterSession", c.autoFilter);
    settings.WriteSetting("OPTION-FILTER", "FilterTransfers", c.transfers);
    settings.WriteSetting("OPTION-FILTER", "FilterDeletes", c.deletes);
    settings.WriteSetting("MAIN", "TrunkLongUsernames", c.trunk);
    form.Form_Load();
    EXPECT_EQ(boxes(), c.boxes);
  }
  form.chkOption_Click(0);
  EXPECT_EQ(boxes(), "012-02-2-2-") << "greyed, not locked";
}

TEST_F(Options, PagesLeftBeforeAreSavedWithoutOk) {
  form.Form_Load();
  form.lstSelectOption_Click(kShortInfoPage);
  form.chkOption_Click(7);
  form.lstSelectOption_Click(kTreeViewPage);
  form.chkOption_Click(4);
  form.lstSelectOption_Click(kSavePage);
  form.chkOption_Click(0);  // and now Cancel
  EXPECT_EQ(settings.ReadSetting("OPTION-SAVE-SHORT-INFO", "SaveTreeIndex"), "1");
  EXPECT_EQ(settings.ReadSetting("OPTION-SAVE", "AppendWhenFilter"), "1");
  EXPECT_TRUE(view.wasCalled("tree boxes on"));
  EXPECT_TRUE(state.showsCheckBoxes);
}

TEST_F(Options, AnotherLayoutOrOtherQuitUsersAskForTheTree) {
  struct Case {
    const char* stored;
    std::vector<std::size_t> layoutsClicked;
    bool togglesQuitUsers;
    const char* saved;
    bool asks;
  };
  const Case cases[] = {{"0", {2}, false, "2", true},
                        {"0", {1, 0}, false, "0", false},
                        {"0", {}, true, "0", true},
                        {"9", {}, false, "9", false}};
  for (const Case& c : cases) {
    settings.WriteSetting("OPTION-TREEVIEW", "TreeViewType", c.stored);
    const std::size_t asked = view.messages().size();
    view.forgetCalls();
    form.Form_Load();
    form.lstSelectOption_Click(kTreeViewPage);
    for (const std::size_t layout : c.layoutsClicked)
      form.optOption_Click(layout);
    if (c.togglesQuitUsers) form.chkOption_Click(5);
    if (c.togglesQuitUsers) form.lstSelectOption_Click(kCommandLinePage);
    form.cmdOK_Click();
    EXPECT_EQ(view.messages().size() - asked, c.asks ? 1U : 0U) << c.stored;
    EXPECT_EQ(view.callsStartingWith("tree header").size(), c.asks ? 1U : 0U);
    EXPECT_EQ(settings.ReadSetting("OPTION-TREEVIEW", "TreeViewType"), c.saved);
  }
  EXPECT_EQ(settings.ReadSetting("OPTION-TREEVIEW", "DisplayQUITUsers"), "0");
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
