#include <gtest/gtest.h>

#include "app/open_log_command.h"
#include "core/text.h"
#include "tests/support/recording_view.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

class OpenLogTest : public testing::Test {
 protected:
  OpenLogTest() {
    state.programFolder = folder.path();
    settings.WriteDefaultSettingsFile();
  }
  [[nodiscard]] std::string setting(std::string_view key) const { return settings.ReadSetting("MAIN", key); }
  /// Nothing is open and no setting or menu was touched.
  void expectUntouched() const {
    EXPECT_TRUE(state.logPath.empty());
    EXPECT_EQ(state.logType, LogType::None);
    EXPECT_EQ(folder.read("quorvel.ini"), defaultSettingsText());
    EXPECT_TRUE(view.callsStartingWith("enable").empty());
    EXPECT_TRUE(view.callsStartingWith("status").empty());
  }

  TempFolder folder;
  Settings settings{systemFiles(), folder.path()};
  MainWindowState state;
  RecordingView view;
  Pacer pacer;
  CommandContext context{systemFiles(), settings, state, view, pacer};
};

TEST_F(OpenLogTest, TheChosenLogIsShownAndRemembered) {
  TempFolder logs;
  const auto log = logs.write("a b.log", "x");
  view.chooseOpen(log);
  chooseLogFile(context);
  EXPECT_EQ(state.logPath, log);
  EXPECT_EQ(state.logTitle, "a b.log");
  EXPECT_EQ(view.status(StatusPanel::Text), "Using a b.log");
  EXPECT_EQ(setting("LastOpenPath"), logs.path().string());
  EXPECT_EQ(setting("LastOpenFileType"), "1");
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
  const struct {
    int index;
    LogType type;
    std::string name;
  } kCases[] = {{1, LogType::ServU, "Serv-U log file"},
                {2, LogType::ServU25a, "Serv-U 2.5a + log file"},
                {3, LogType::WarFtpd, "WAR FTPD log file"},
                {0, LogType::ServU, "Serv-U log file"},
                {4, LogType::ServU, "Serv-U log file"}};
  const auto log = folder.write("a.log", "x");
  for (const auto& c : kCases) {
    view.chooseOpen(log, c.index);
    chooseLogFile(context);
    EXPECT_EQ(state.logType, c.type) << c.index;
    EXPECT_EQ(state.logTypeName, c.name);
    EXPECT_EQ(view.status(StatusPanel::LogType), c.name);
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

TEST_F(OpenLogTest, CancellingChangesNothing) {
  chooseLogFile(context);
  expectUntouched();
  EXPECT_TRUE(view.messages().empty());
}

TEST_F(OpenLogTest, AFailedDialogIsTold) {
  view.answerOpen({FileChoice::Outcome::Failed, {}, 1, "No dialog.", 12});
  chooseLogFile(context);
  expectUntouched();
  EXPECT_EQ(view.messages().at(0).text, "Error 12 selecting file.\r\nNo dialog.");
}

TEST_F(OpenLogTest, WhatIsNoFileIsRefused) {
  for (const auto& path : {folder.path(), folder / "gone.log"}) {
    view.chooseOpen(path);
    chooseLogFile(context);
    openLogFile(context, path);
    expectUntouched();
    EXPECT_EQ(view.messages().back().text, pathText(path) + ": There is no such file.");
  }
  EXPECT_EQ(view.messages().size(), 4U);
}

}  // namespace
}  // namespace quorvel::test
