// The command line: its arguments, and the run they ask for.
#include <array>

#include "cli/batch_run.h"
#include "cli/command_line_argument.h"
#include "tests/app/scanned_log.h"

namespace quorvel::test {
namespace {

// How codes are found and sorted is compared with a plain loop in the fuzz target of command lines.
class CommandLineArgumentTest : public testing::Test, protected LogWindow {
 protected:
  classCommandLineArgument arguments{settings, folder.path()};
};

TEST_F(CommandLineArgumentTest, KnowsAnOutputFile) {
  for (const std::string_view text :
       {"a.log 100  out.txt", "a 210 210 out", "a 100x 1e2 -100 99999999999999999999100 out"})
    EXPECT_TRUE(arguments.GetCommandLine(text).isOk() && arguments.endsWithOutputFile()) << text;
  for (const std::string_view text : {" \t ", "a.log", "C:\\serv-u.log 300 100", "a 100 360 bob", "a 260 bob 260 al"})
    EXPECT_FALSE(!arguments.GetCommandLine(text).isOk() || arguments.endsWithOutputFile()) << text;
}

TEST_F(CommandLineArgumentTest, TakesAsManyArgumentsAsTheSettingAllows) {
  std::string many;
  for (int i = 0; i < 40000; ++i)
    many += "x ";
  const std::pair<std::string_view, std::size_t> cases[] = {{"2", 2}, {"0", 0},   {"-1", 0},
                                                            {"", 50}, {"ab", 50}, {"1000000000", 32767}};
  for (const auto& [value, count] : cases) {
    settings.WriteSetting("COMMAND-LINE-ARGUMENTS", "MaxArguments", value);
    EXPECT_TRUE(arguments.GetCommandLine(many).isOk());
    EXPECT_EQ(arguments.argumentCount(), count) << value;
  }
}

TEST_F(CommandLineArgumentTest, MakesLogNamesAbsolute) {
  const std::array<std::string, 3> cases[] = {{"logs/a.log", (folder / "logs/a.log").string(), "logs/a.log"},
                                              {"/var/log/a.log", "/var/log/a.log", "a.log"},
                                              {"c:/logs/a.log", "c:/logs/a.log", "a.log"}};
  for (const auto& [name, full, file] : cases) {
    arguments.fix_filenames_from_command_array(name);
    EXPECT_EQ(arguments.FullPath(), full);
    EXPECT_EQ(arguments.FileName(), file);
  }
}

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
