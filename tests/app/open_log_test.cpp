#include "app/open_log_command.h"
#include "core/text.h"
#include "tests/app/scanned_log.h"

namespace quorvel::test {
namespace {

using OpenLogTest = CommandTest;

TEST_F(OpenLogTest, TheChosenLogIsShownAndRemembered) {
  TempFolder logs;
  const auto log = logs.write("a b.log", "x");
  view.chooseOpen(log);
  chooseLogFile(context);
  EXPECT_EQ(state.logPath, log);
  EXPECT_EQ(state.logTitle, "a b.log");
  EXPECT_EQ(view.status(StatusPanel::Text), "Using a b.log");
  EXPECT_EQ(settings.ReadSetting("MAIN", "LastOpenPath"), logs.path().string());
  EXPECT_EQ(settings.ReadSetting("MAIN", "LastOpenFileType"), "1");
  EXPECT_TRUE(view.isEnabled(MenuItem::mnuCountAllTransfers));
  for (const MenuItem item : {MenuItem::mnuFilterAll, MenuItem::mnuFilterSession, MenuItem::mnuCountSelectedSessions,
                              MenuItem::mnuCountSessionsTransfers})
    EXPECT_FALSE(view.isEnabled(item)) << menuItemName(item);

  chooseLogFile(context);
  EXPECT_EQ(view.fileRequests()[0].folder, folder.path());
  EXPECT_EQ(view.fileRequests()[1].folder, logs.path());
  EXPECT_EQ(view.fileRequests()[0].filter, "Serv-U log file                    (*.*)|*.*");
  EXPECT_TRUE(view.fileRequests()[0].fileMustExist);
}

TEST_F(OpenLogTest, TheFilterIndexDecidesOnTheType) {
  const std::string names[] = {"Serv-U log file", "Serv-U 2.5a + log file", "WAR FTPD log file"};
  const auto log = folder.write("a.log", "x");
  for (const auto& [index, type] : {std::pair(1, 1), {2, 2}, {3, 3}, {0, 1}, {4, 1}}) {
    view.chooseOpen(log, index);
    chooseLogFile(context);
    EXPECT_EQ(state.logType, static_cast<LogType>(type)) << index;
    EXPECT_EQ(state.logTypeName, names[type - 1]);
    EXPECT_EQ(view.status(StatusPanel::LogType), names[type - 1]);
  }
}

TEST_F(OpenLogTest, TheTypeChosenLastIsOfferedAndTakenForADroppedLog) {
  const auto log = folder.write("a.log", "x");
  const std::pair<std::string, int> kCases[] = {{"3", 3}, {"2", 2}, {"", 1}, {"abc", 1}, {"-1", 1}, {"99999999999", 1}};
  for (const auto& [stored, index] : kCases) {
    settings.WriteSetting("MAIN", "LastOpenFileType", stored);
    chooseLogFile(context);
    EXPECT_EQ(view.fileRequests().back().filterIndex, index) << stored;
    openLogFile(context, log);
    EXPECT_EQ(state.logType, static_cast<LogType>(index)) << stored;
  }
}

TEST_F(OpenLogTest, WithoutAFileNothingChanges) {
  chooseLogFile(context);
  EXPECT_TRUE(view.messages().empty());
  view.answerOpen({FileChoice::Outcome::Failed, {}, 1, "No dialog.", 12});
  chooseLogFile(context);
  EXPECT_EQ(message(), "Error 12 selecting file.\r\nNo dialog.");
  for (const auto& path : {folder.path(), folder / "gone.log"}) {
    view.chooseOpen(path);
    chooseLogFile(context);
    openLogFile(context, path);
    EXPECT_EQ(message(), pathText(path) + ": There is no such file.");
  }
  EXPECT_EQ(view.messages().size(), 5U);
  EXPECT_TRUE(state.logPath.empty());
  EXPECT_EQ(state.logType, LogType::None);
  EXPECT_EQ(folder.read("quorvel.ini"), defaultSettingsText());
  EXPECT_TRUE(view.callsStartingWith("enable").empty());
  EXPECT_TRUE(view.callsStartingWith("status").empty());
}

}  // namespace
}  // namespace quorvel::test
