// The run that the arguments ask for; how they are taken apart is compared with a plain loop in the fuzz target of
// command lines.
#include "cli/batch_run.h"
#include "tests/support/program_world.h"

namespace quorvel::test {
namespace {

using BatchRun = ScannedLogTest;

TEST_F(BatchRun, ArgumentsEndTheProgramWhereAutoExitIs1) {
  EXPECT_FALSE(runBatch(window, " \t").endsProgram);
  for (const auto& [value, ends] : {std::pair("1", true), {"01", true}, {"0", false}, {"2", false}, {"", true}}) {
    settings.WriteSetting("COMMAND-LINE-ARGUMENTS", "AutoExit", value);
    EXPECT_EQ(runBatch(window, "a.log").endsProgram, ends) << value;
  }
}

TEST_F(BatchRun, AnInterruptEndsTheRunBetweenItsSteps) {
  bool interrupted = false;
  view.atYield(view.yieldCount() + 1, [&] {
    interrupted = true;
    window.mnuStop_Click();
  });
  EXPECT_TRUE(runBatch(window, "a.log 100 300 " + (folder / "out.txt").string(), [&] { return interrupted; }).failed);
  EXPECT_EQ(view.messages().back().text, "Interrupted; the results are not complete.");
  EXPECT_FALSE(folder.has("out.txt"));
}

}  // namespace
}  // namespace quorvel::test
