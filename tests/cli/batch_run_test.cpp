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
    folder.write("a.log", logSession("000001", "alice", "10.0.0.5"));
    settings.prepareFile();
  }

  TempFolder folder;
  Settings settings{systemFiles(), folder.path()};
  RecordingView view;
  Pacer pacer{Pacer::Clock::duration::zero()};
  frmMain window{systemFiles(), settings, view, pacer, folder.path()};
};

TEST_F(BatchRunTest, ArgumentsEndTheProgramWhereAutoExitIs1) {
  EXPECT_FALSE(runBatch(window, " \t").endsProgram);
  for (const auto& [value, ends] : {std::pair("1", true), {"01", true}, {"0", false}, {"2", false}, {"", true}}) {
    settings.WriteSetting("COMMAND-LINE-ARGUMENTS", "AutoExit", value);
    EXPECT_EQ(runBatch(window, "a.log").endsProgram, ends) << value;
  }
}

TEST_F(BatchRunTest, AnInterruptEndsTheRunBetweenItsSteps) {
  bool interrupted = false;
  view.atYield(1, [&] {
    interrupted = true;
    window.mnuStop_Click();
  });
  EXPECT_TRUE(runBatch(window, "a.log 100 300 " + (folder / "out.txt").string(), [&] { return interrupted; }).failed);
  EXPECT_EQ(view.messages().at(0).text, "Interrupted; the results are not complete.");
  EXPECT_FALSE(folder.has("out.txt"));
}

}  // namespace
}  // namespace quorvel::test
