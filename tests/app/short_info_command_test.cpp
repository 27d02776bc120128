#include "app/short_info_command.h"

#include "core/text.h"
#include "tests/app/scanned_log.h"

namespace quorvel::test {
namespace {

class SaveShortInfo : public ScannedLogTest {
 protected:
  [[nodiscard]] std::size_t records() const {
    const std::string text = folder.read("table.txt");
    std::size_t found = 0;
    for (std::size_t at = text.find("10.0.0."); at != std::string::npos; at = text.find("10.0.0.", at + 1))
      ++found;
    return found;
  }
  void saveTo(const std::filesystem::path& path) {
    view.chooseSave(path);
    SaveShortInfoCommand(context);
  }
};

TEST_F(SaveShortInfo, WritesEveryRecordAndRemembersTheFolder) {
  saveTo(folder / "table.txt");
  EXPECT_EQ(records(), 3U);
  const FileRequest& request = view.fileRequests().at(0);
  EXPECT_EQ(request.filter, "Short info on users             (*.txt)|*.txt");
  EXPECT_EQ(request.folder, folder.path());
  EXPECT_TRUE(request.asksBeforeOverwriting);
  EXPECT_EQ(view.callsStartingWith("status").front(), "status 1 \"Saving " + pathText(folder / "table.txt") + '"');
  EXPECT_EQ(view.status(StatusPanel::Text), "Using a.log");
  EXPECT_EQ(settings.ReadSetting("MAIN", "LastSavePath"), folder.path().string());

  settings.WriteSetting("MAIN", "LastSavePath", "/reports");
  view.forgetCalls();
  SaveShortInfoCommand(context);  // cancelled
  EXPECT_EQ(view.fileRequests().at(1).folder, "/reports");
  EXPECT_TRUE(view.callsStartingWith("status").empty());
  EXPECT_TRUE(view.messages().empty());
}

TEST_F(SaveShortInfo, StopLeavesACompleteTableUpToThere) {
  view.atYield(view.yieldCount() + 2, [this] {
    EXPECT_EQ(records(), 2U) << "whole lines are in the file at every yield";
    state.stopFlag = true;
  });
  saveTo(folder / "table.txt");
  EXPECT_EQ(records(), 2U);
  EXPECT_FALSE(state.stopFlag);
  EXPECT_FALSE(view.isCommandRunning());
}

TEST_F(SaveShortInfo, EveryFailureIsToldAndNothingIsLostBeforeTheRecordsCouldBeRead) {
  const int attempts = failEachOperation([this](CommandContext& other, const FailingFiles& files) {
    folder.write("table.txt", "old");
    view.forgetCalls();
    view.chooseSave(folder / "table.txt");
    SaveShortInfoCommand(other);
    EXPECT_EQ(view.callsStartingWith("message").size(), files.hasFailed() ? 1U : 0U);
    EXPECT_TRUE(!files.hasFailed() || message().starts_with(folder.path().string()));
    EXPECT_TRUE(files.hasFailed() || records() == 3);
    EXPECT_TRUE(files.opened("table.txt") > 0 || folder.read("table.txt") == "old");
  });
  EXPECT_GT(attempts, 3);
}

TEST_F(SaveShortInfo, TellsWhyNothingWasSaved) {
  saveTo(folder / "missing" / "table.txt");
  EXPECT_TRUE(message().starts_with(pathText(folder / "missing" / "table.txt")));
  saveTo(folder.path() / "." / "a.log");
  EXPECT_EQ(folder.read("a.log"), logLines(""));
  EXPECT_EQ(view.messages().size(), 2U);
  view.answerSave({FileChoice::Outcome::Failed, {}, 1, "No printer", 28});
  SaveShortInfoCommand(context);
  EXPECT_EQ(message(), "Error 28 selecting file.\r\nNo printer");
  std::filesystem::remove(state.usersFilePath());
  saveTo(folder.write("table.txt", "old"));
  EXPECT_EQ(message(), pathText(state.usersFilePath()) + ": File not found.");
  EXPECT_EQ(folder.read("table.txt"), "old");
}

}  // namespace
}  // namespace quorvel::test
