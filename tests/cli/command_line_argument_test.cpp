#include "cli/command_line_argument.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

class CommandLineArgumentTest : public testing::Test {
 protected:
  TempFolder folder;
  Settings settings{systemFiles(), folder.path()};
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

}  // namespace
}  // namespace quorvel::test
