#include "app/filter_commands.h"

#include "filter/results_file.h"
#include "tests/app/scanned_log.h"

namespace quorvel::test {
namespace {

constexpr const char* kNoMatch = "DID NOT FIND ANY MATCH FOR THE SELECTED FILTER(S)";
using Command = void (*)(CommandContext&);

class FilterCommandsTest : public ScannedLogTest {
 protected:
  void set(std::string_view key, std::string_view value) { settings.WriteSetting("OPTION-FILTER", key, value); }
  void replaceResults() { settings.WriteSetting("OPTION-SAVE", "AppendWhenFilter", "0"); }
  void filterToFile(Command command) {
    view.chooseSave(folder / "out.txt");
    command(context);
  }
  /// What a whole session looks like in the results file.
  [[nodiscard]] std::string block(std::int32_t recordNumber) const { return block(recordNumber, lines(recordNumber)); }
  [[nodiscard]] std::string block(std::int32_t recordNumber, const std::string& filtered) const {
    auto users = UsersFile::open(systemFiles(), state.usersFilePath());
    std::string text;
    appendSessionBlockHeader(text, users.value().read(recordNumber).value());
    return text + filtered + "\r\n\r\n\r\n\r\n";
  }
  static std::string lines(std::int32_t number) { return logLines("(00000" + std::to_string(number) + ")"); }
};

TEST_F(FilterCommandsTest, HeaderShowsTheOptionsThatAreOn) {
  writeFilterOptionsHeader(context);
  EXPECT_EQ(view.status(StatusPanel::FilterOptions), "Filter options: A");
  for (const char* key : {"FilterTransfers", "FilterDeletes", "FilterMDTM", "FilterSITE"})
    set(key, "1");
  set("AutoFilterSession", "0");
  writeFilterOptionsHeader(context);
  EXPECT_EQ(view.status(StatusPanel::FilterOptions), "Filter options: TDMS");
}

TEST_F(FilterCommandsTest, SessionIsShownInTheFilterWindowAgainFromMemoryUntilTheLogChanges) {
  folder.write("filter.qva", "of an earlier run");
  click(kSecondSession);
  filterSession(context);
  EXPECT_EQ(view.filterText(), lines(2));
  EXPECT_FALSE(folder.has("filter.qva"));
  EXPECT_EQ(view.status(StatusPanel::Text), "Using a.log");

  const auto time = std::filesystem::last_write_time(state.logPath);
  folder.write("a.log", std::string(std::filesystem::file_size(state.logPath), ' '));
  std::filesystem::last_write_time(state.logPath, time);
  filterSession(context);
  EXPECT_EQ(view.filterText(), lines(2)) << "looked the same, was not read";
  std::filesystem::last_write_time(state.logPath, time + std::chrono::seconds(1));
  filterSession(context);
  EXPECT_EQ(view.filterText(), "");
}

TEST_F(FilterCommandsTest, OnlyTheCommandFilterTellsThatItFoundNothing) {
  view.setFilterText("old");
  filterSession(context);  // none was clicked
  EXPECT_EQ(view.filterText(), "");
  set("FilterTransfers", "1");
  filterSession(context);
  EXPECT_EQ(view.filterText(), kNoMatch);
  click(kSecondSession);
  filterSession(context);
  EXPECT_EQ(view.filterText(), logLines("(000002) STOR") + logLines("(000002) Received") + "\r\n");
}

TEST_F(FilterCommandsTest, AllSessionsAreAppended) {
  filterToFile(filterAll);
  const std::string all = block(1) + block(2) + block(3);
  EXPECT_EQ(folder.read("out.txt"), all);
  EXPECT_EQ(folder.read("filter.qva"), lines(3));
  EXPECT_EQ(state.currentSession.LogonNo, 3);
  EXPECT_EQ(view.status(StatusPanel::Text), "Using a.log");
  EXPECT_FALSE(view.isProgressVisible());
  EXPECT_EQ(view.filterText(), "");
  filterToFile(filterAll);
  EXPECT_EQ(folder.read("out.txt"), all + all);
  replaceResults();
  filterToFile(filterAll);
  EXPECT_EQ(folder.read("out.txt"), all);
}

TEST_F(FilterCommandsTest, CommandFilterLeavesItsMessageAfterResultsAndEmptyBlocksWithoutALog) {
  set("FilterTransfers", "1");
  filterToFile(filterAll);
  EXPECT_EQ(folder.read("out.txt"), block(1, logLines("(000001) RETR") + logLines("(000001) Sent") + "\r\n") +
                                        block(2, logLines("(000002) STOR") + logLines("(000002) Received") + "\r\n") +
                                        block(3, ""));
  EXPECT_EQ(view.filterText(), kNoMatch);
  std::filesystem::remove(folder / "out.txt");
  std::filesystem::remove(state.logPath);
  filterToFile(filterAll);
  EXPECT_EQ(folder.read("out.txt"), block(1, "") + block(2, "") + block(3, ""));
}

TEST_F(FilterCommandsTest, IpAndUserChooseBySession) {
  click(kFirstSession);
  filterToFile(filterIP);
  EXPECT_EQ(folder.read("out.txt"), block(1) + block(3));
  replaceResults();
  click(kSecondSession);
  filterToFile(filterUser);
  EXPECT_EQ(folder.read("out.txt"), block(2));
  EXPECT_EQ(state.currentSession.LogonNo, 3) << "the last record read";
}

TEST_F(FilterCommandsTest, SelectedSessionsFollowTheNodesOfWhateverFileIsThere) {
  state.showsCheckBoxes = true;
  replaceResults();
  click(kFirstSession);
  for (const std::int32_t node : {kThirdSession, kSecondSession, kBobNode})
    state.tree.setChecked(node, true);
  filterToFile(filterSelected);
  EXPECT_EQ(folder.read("out.txt"), block(2) + block(3));

  state.tree.setChecked(kSecondSession, false);
  auto users = UsersFile::open(systemFiles(), state.usersFilePath(), OpenMode::ReadWrite);
  users.value().setTreeIndex(3, 0);
  users.value().setTreeIndex(1, kThirdSession);
  users.value().setTreeIndex(2, kThirdSession);
  ASSERT_TRUE(users.value().flush().isOk());
  filterToFile(filterSelected);
  EXPECT_EQ(folder.read("out.txt"), block(1)) << "the first record with the node's number";
}

TEST_F(FilterCommandsTest, MissingChoicesAreExplained) {
  struct Case {
    Command command;
    bool showsCheckBoxes;
    std::size_t asked;
    const char* text;
  };
  const Case cases[] = {
      {filterSelected, false, 0,
       "No checkboxes availible.\r\nEneable the checkboxes.\r\nPreferences -> Options -> TreeView options"},
      {filterIP, false, 1, "Exiting\r\nPlease click on a session with the current IP"},
      {filterUser, false, 2, "Exiting\r\nPlease click on a session with the current user"},
      {filterSelected, true, 3, "Exiting\r\nPlease click on a session with the current user"},
  };
  for (const Case& c : cases) {
    state.showsCheckBoxes = c.showsCheckBoxes;
    filterToFile(c.command);
    EXPECT_EQ(message(), c.text);
    EXPECT_EQ(view.fileRequests().size(), c.asked);
    EXPECT_FALSE(folder.has("out.txt"));
  }
  EXPECT_EQ(view.status(StatusPanel::Text), "Using a.log");
  EXPECT_EQ(view.messages().size(), 4u);
}

TEST_F(FilterCommandsTest, ResultsNeverReplaceWhatTheProgramNeeds) {
  replaceResults();
  for (const char* name : {"a.log", "quorvel.ini", "users.qva", "filter.qva"}) {
    const std::string before = folder.read(name);
    const std::size_t told = view.messages().size();
    view.chooseSave(folder / name);
    filterAll(context);
    EXPECT_EQ(folder.read(name), before);
    EXPECT_EQ(view.messages().size(), told + 1) << name;
    EXPECT_NE(message().find(name), std::string::npos);
  }
}

TEST_F(FilterCommandsTest, KeepsOldResultsWhereThereAreNoNewOnes) {
  replaceResults();
  folder.write("out.txt", "old");
  std::filesystem::rename(folder / "a.log", folder / "b.log");
  filterToFile(filterAll);
  EXPECT_TRUE(view.messages().empty());
  std::filesystem::rename(folder / "b.log", folder / "a.log");
  std::filesystem::remove(state.usersFilePath());
  filterToFile(filterAll);
  EXPECT_TRUE(message().starts_with("Lost file: users.qva\r\n"));
  EXPECT_EQ(folder.read("out.txt"), "old");
}

TEST_F(FilterCommandsTest, BatchUsesItsOwnKeysAndFile) {
  startBatch();
  state.BatchFilterIP = "10.0.0.6";
  filterIP(context);
  EXPECT_EQ(folder.read("out.txt"), block(2));
  state.BatchFilterUser = "alice";
  filterUser(context);
  EXPECT_EQ(folder.read("out.txt"), block(2) + block(1) + block(3));
  EXPECT_TRUE(view.fileRequests().empty());
  EXPECT_TRUE(view.messages().empty());
  EXPECT_FALSE(state.batchFailed);
}

TEST_F(FilterCommandsTest, BatchNamesTheFileItCannotUse) {
  startBatch();
  state.batchOutputFile = folder / "missing" / "out.txt";
  for (const char* name : {"out.txt", "a.log"}) {
    const std::size_t told = view.messages().size();
    state.batchFailed = false;
    filterAll(context);
    EXPECT_TRUE(state.batchFailed) << name;
    EXPECT_EQ(view.messages().size(), told + 1) << name;
    EXPECT_NE(message().find(name), std::string::npos) << message();
    startBatch();
    std::filesystem::remove(state.logPath);
  }
  EXPECT_FALSE(folder.has("out.txt"));
}

TEST_F(FilterCommandsTest, StopEndsTheCommandWithCompleteLines) {
  std::string seen;
  const int before = view.yieldCount();
  view.atYield(before + 1, [&] {
    seen = folder.read("out.txt");
    state.stopFlag = true;
    filterAll(context);  // commands do not nest
  });
  filterToFile(filterAll);
  EXPECT_TRUE(seen.ends_with("\r\n")) << seen;
  EXPECT_TRUE((block(1) + block(2) + block(3)).starts_with(seen));
  EXPECT_FALSE(state.stopFlag);
  EXPECT_EQ(view.yieldCount(), before + 1);
  EXPECT_EQ(view.fileRequests().size(), 1u);
  EXPECT_LT(folder.read("out.txt").size(), (block(1) + block(2) + block(3)).size());
}

TEST_F(FilterCommandsTest, LongTextReachesTheWindowInPieces) {
  const std::string huge(3'000'000, 'x');
  folder.write("a.log", logLines("(000001) Connected") + "(000001) " + huge + "\r\n");
  click(kFirstSession);
  filterSession(context);
  EXPECT_EQ(view.filterText(), logLines("(000001) Connected") + "(000001) " + huge + "\r\n");
  EXPECT_GT(view.callsStartingWith("filter append").size(), 5u);
}

}  // namespace
}  // namespace quorvel::test
