#include "app/short_info_command.h"

#include <gtest/gtest.h>

#include "core/users_file.h"
#include "tests/support/failing_files.h"
#include "tests/support/recording_view.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

class SaveShortInfo : public ::testing::Test {
 protected:
  SaveShortInfo() {
    settings.prepareFile();
    state.programFolder = folder.path();
    state.logPath = folder.write("a.log", "the log");
    state.logTitle = "a.log";
  }

  void writeUsers(std::int32_t count) {
    UsersFileWriter writer(systemFiles(), state.usersFilePath(), {});
    for (std::int32_t n = 1; n <= count; ++n)
      writer.WriteSessionRecord({n, "alice", "", "", "", "", "", n, 0}, n);
    writer.flush();
  }
  std::size_t linesOfAlice() const {
    const std::string text = folder.read("table.txt");
    std::size_t lines = 0;
    for (std::size_t at = text.find("alice"); at != std::string::npos; at = text.find("alice", at + 1))
      ++lines;
    return lines;
  }
  void save() {
    view.chooseSave(folder / "table.txt");
    SaveShortInfoCommand(context);
  }

  TempFolder folder;
  Settings settings{systemFiles(), folder.path()};
  MainWindowState state;
  RecordingView view;
  Pacer pacer{Pacer::Clock::duration::zero()};
  CommandContext context{systemFiles(), settings, state, view, pacer};
};

TEST_F(SaveShortInfo, WritesOneLinePerRecordAndRemembersTheFolder) {
  writeUsers(3);
  save();
  EXPECT_EQ(linesOfAlice(), 3U);
  EXPECT_EQ(settings.ReadSetting("MAIN", "LastSavePath"), folder.path().string());
  const FileRequest& request = view.fileRequests().at(0);
  EXPECT_EQ(request.filter, "Short info on users             (*.txt)|*.txt");
  EXPECT_EQ(request.folder, folder.path());
  EXPECT_TRUE(request.asksBeforeOverwriting);
  EXPECT_EQ(view.callsStartingWith("status").front(), "status 1 \"Saving " + (folder / "table.txt").string() + '"');
  EXPECT_EQ(view.status(StatusPanel::Text), "Using a.log");
  EXPECT_TRUE(view.messages().empty());
}

TEST_F(SaveShortInfo, StartsInTheFolderOfTheLastFile) {
  settings.WriteSetting("MAIN", "LastSavePath", "/reports");
  SaveShortInfoCommand(context);
  EXPECT_EQ(view.fileRequests().at(0).folder, "/reports");
  EXPECT_TRUE(view.callsStartingWith("status").empty()) << "cancelled";
}

TEST_F(SaveShortInfo, StopLeavesACompleteTableUpToThere) {
  writeUsers(10);
  view.atYield(4, [this] {
    EXPECT_EQ(linesOfAlice(), 4U) << "whole lines are in the file at every yield";
    state.stopFlag = true;
  });
  save();
  EXPECT_EQ(linesOfAlice(), 4U);
  EXPECT_FALSE(state.stopFlag);
  EXPECT_FALSE(view.isCommandRunning());
}

TEST_F(SaveShortInfo, KeepsAnExistingTableWhenThereAreNoRecordsToRead) {
  folder.write("table.txt", "old");
  save();
  EXPECT_EQ(folder.read("table.txt"), "old");
  EXPECT_EQ(view.messages().at(0).text, (folder / "users.qva").string() + ": File not found.");
}

TEST_F(SaveShortInfo, NamesTheFileThatCannotBeWritten) {
  writeUsers(1);
  view.chooseSave(folder / "missing" / "table.txt");
  SaveShortInfoCommand(context);
  ASSERT_EQ(view.messages().size(), 1U);
  EXPECT_TRUE(view.messages()[0].text.starts_with((folder / "missing" / "table.txt").string()));
}

TEST_F(SaveShortInfo, EveryFailureIsToldAndNothingIsLostBeforeTheRecordsCouldBeRead) {
  writeUsers(3);
  int tried = 0;
  for (bool failed = true; failed; ++tried) {
    folder.write("table.txt", "old");
    view.forgetCalls();
    FailingFiles files(tried + 1);
    CommandContext other{files, settings, state, view, pacer};
    view.chooseSave(folder / "table.txt");
    SaveShortInfoCommand(other);
    failed = files.hasFailed();
    EXPECT_EQ(view.callsStartingWith("message").size(), failed ? 1U : 0U) << "operation " << tried + 1;
    EXPECT_TRUE(!failed || view.messages().back().text.starts_with(folder.path().string()));
    EXPECT_TRUE(failed || linesOfAlice() == 3);
    EXPECT_TRUE(files.opened("table.txt") > 0 || folder.read("table.txt") == "old");
  }
  EXPECT_GT(tried, 3);
}

TEST_F(SaveShortInfo, NeverWritesOverTheLog) {
  writeUsers(1);
  view.chooseSave(folder.path() / "." / "a.log");
  SaveShortInfoCommand(context);
  EXPECT_EQ(folder.read("a.log"), "the log");
  EXPECT_EQ(view.messages().size(), 1U);
}

TEST_F(SaveShortInfo, TellsWhatFailedInTheDialog) {
  view.answerSave({FileChoice::Outcome::Failed, {}, 1, "No printer", 28});
  SaveShortInfoCommand(context);
  EXPECT_EQ(view.messages().at(0).text, "Error 28 selecting file.\r\nNo printer");
}

}  // namespace
}  // namespace quorvel::test
