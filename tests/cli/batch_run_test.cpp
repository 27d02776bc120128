#include "cli/batch_run.h"

#include <gtest/gtest.h>

#include "tests/support/recording_view.h"
#include "tests/support/sample_log.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

class BatchRunTest : public testing::Test {
 protected:
  BatchRunTest() {
    folder.write("a.log", logSession("000001", "alice", "10.0.0.5") + logSession("000002", "300", "10.0.0.6"));
    settings.prepareFile();
    window.load();
    view.forgetCalls();
  }
  [[nodiscard]] std::string output() const { return (folder / "out.txt").string(); }

  TempFolder folder;
  Settings settings{systemFiles(), folder.path()};
  RecordingView view;
  Pacer pacer{Pacer::Clock::duration::zero()};
  frmMain window{systemFiles(), settings, view, pacer, folder.path()};
};

TEST_F(BatchRunTest, DoesNothingWithoutArguments) {
  for (const std::string_view text : {"", " \t"}) {
    const auto outcome = runBatch(window, text);
    EXPECT_FALSE(outcome.failed || outcome.endsProgram);
  }
  EXPECT_TRUE(view.calls().empty());
}

TEST_F(BatchRunTest, OpensTheLogWithoutScanningIt) {
  settings.WriteSetting("MAIN", "LastOpenFileType", "3");
  const std::string before = folder.read("quorvel.ini");
  const auto outcome = runBatch(window, "a.log");
  EXPECT_FALSE(outcome.failed);
  EXPECT_TRUE(outcome.endsProgram);
  EXPECT_EQ(view.status(StatusPanel::Text), "Using a.log");
  EXPECT_EQ(view.status(StatusPanel::LogType), "Serv-U log file");
  EXPECT_EQ(window.state().logPath, folder / "a.log");
  EXPECT_FALSE(view.isEnabled(MenuItem::mnuFilterAll) || view.isEnabled(MenuItem::mnuCountAllTransfers));
  EXPECT_FALSE(folder.has("users.qva"));
  EXPECT_EQ(folder.read("quorvel.ini"), before);
}

TEST_F(BatchRunTest, OnlyAutoExit1EndsTheProgram) {
  for (const auto& [value, ends] : {std::pair("1", true), {"01", true}, {"0", false}, {"2", false}, {"", true}}) {
    settings.WriteSetting("COMMAND-LINE-ARGUMENTS", "AutoExit", value);
    EXPECT_EQ(runBatch(window, "a.log").endsProgram, ends) << value;
  }
}

TEST_F(BatchRunTest, AValueThatLooksLikeACodeStaysAValue) {
  EXPECT_FALSE(runBatch(window, "a.log 360 300 100 " + output()).failed);
  const std::string results = folder.read("out.txt");
  EXPECT_NE(results.find("Counter results: username: 300"), std::string::npos) << results;
  EXPECT_FALSE(window.state().batchFlag);
}

TEST_F(BatchRunTest, AnInterruptEndsTheRunBetweenItsSteps) {
  bool interrupted = false;
  view.atYield(1, [&] {
    interrupted = true;
    window.mnuStop_Click();
  });
  const auto outcome = runBatch(window, "a.log 100 300 " + output(), [&] { return interrupted; });
  EXPECT_TRUE(outcome.failed);
  ASSERT_EQ(view.messages().size(), 1U);
  EXPECT_EQ(view.messages().front().text, "Interrupted; the results are not complete.");
  EXPECT_FALSE(folder.has("out.txt"));
}

}  // namespace
}  // namespace quorvel::test
