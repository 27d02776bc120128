#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

#include "app/settings.h"
#include "tests/support/program_run.h"
#include "tests/support/sample_log.h"

namespace quorvel::test {
namespace {

const std::string kLog = logSession("000001", "alice", "10.0.0.5") + logSession("000002", "\xE5ke", "10.0.0.6") +
                         logSession("000003", "alice", "10.0.0.7");

/// The program beside a log of three sessions, called from a folder of its own.
class EndToEnd : public testing::Test {
 protected:
  ProgramRun run(const std::string& arguments) const { return runProgram(QUORVEL_EXECUTABLE, home, work, arguments); }
  /// text with the two folders' names replaced by HOME and WORK.
  [[nodiscard]] std::string shown(std::string text) const {
    for (const auto& [folder, name] : {std::pair(home.path().string(), "HOME"), {work.path().string(), "WORK"}}) {
      for (auto at = text.find(folder); at != std::string::npos; at = text.find(folder))
        text.replace(at, folder.size(), name);
    }
    return text;
  }
  void setSetting(std::string_view key, std::string_view value) const {
    Settings settings(systemFiles(), home.path());
    settings.prepareFile();
    settings.WriteSetting("COMMAND-LINE-ARGUMENTS", key, value);
  }

  TempFolder home;
  TempFolder work;
};

std::size_t countOf(std::string_view text, std::string_view part) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1))
    ++count;
  return count;
}

TEST_F(EndToEnd, EachCodeWritesItsResults) {
  const struct {
    std::string codes;
    std::vector<std::pair<std::string, std::size_t>> found;  ///< texts of the results and how often they stand there
  } cases[] = {
      {"100 210", {{"Connected to", 3}, {"Counter results", 0}}},
      {"250 10.0.0.5 100", {{"(000001) Connected to", 1}, {"Connected to", 1}}},
      {"100 260 alice", {{"Connected to", 2}, {"10.0.0.6", 0}}},
      {"100 260 \xC3\xA5ke", {{"(000002) USER \xE5ke", 1}, {"Connected to", 1}}},
      {"100 260 Alice", {{"Connected to", 0}}},
      {"300", {{"Counter results: All transfers", 1}, {"15360", 1}}},
      {"0100 350 10.0.0.7", {{"Counter results: IP: 10.0.0.7", 1}, {"5120", 1}}},
      {"100 360 alice", {{"Counter results: username: alice", 1}, {"10240", 1}}},
      {"360 300 100", {{"Counter results: username: 300", 1}}},
      {"300 100 300 210 210", {{"Counter results", 1}, {"Connected to", 3}}},
  };
  for (const auto& c : cases) {
    home.write("a.log", kLog);
    work.write("out.txt", "");
    const auto result = run("a.log " + c.codes + " out.txt");
    EXPECT_EQ(result.status, 0) << c.codes;
    EXPECT_EQ(result.out + result.err, "") << c.codes;
    const std::string results = work.read("out.txt");
    for (const auto& [text, count] : c.found)
      EXPECT_EQ(countOf(results, text), count) << c.codes << ": " << text << "\n" << results;
    EXPECT_EQ(home.read("a.log"), kLog) << c.codes;
    EXPECT_FALSE(home.has("users.qva")) << c.codes;
    EXPECT_EQ(home.read("quorvel.ini"), defaultSettingsText()) << c.codes;
  }
}

TEST_F(EndToEnd, EachProblemIsOneLineAndStatus1) {
  ASSERT_EQ(::mkfifo((home / "pipe").c_str(), 0600), 0);
  const std::pair<std::string, std::string> cases[] = {
      {"missing.log", "HOME/missing.log: File not found."},
      {"\"$(printf 'mis\\033]0;t\\007sing.log')\" 100", "HOME/mis?]0;t?sing.log: File not found."},
      {"a.log/x 100", "HOME/a.log/x: Path not found."},
      {"/ 100 300 out.txt", "/: Path/File access error."},
      {"pipe 100", "HOME/pipe: Path/File access error."},
      {"a.log 300 350 10.0.0.5 out.txt", "Code 350 needs the sessions that code 100 finds; add code 100."},
      {"a.log 100 260", "Subscript out of range: code 260 needs a value (user name)."},
      {"a.log 100 210", "Code 210 needs a file for its results as the last argument; it is missing."},
      {"a.log 100 360 bob", "Code 360 needs a file for its results as the last argument; it is missing."},
      {"a.log 100 300 '" + (home / "a.log").string() + "'",
       "HOME/a.log: this is the log; results cannot be written into it."},
      {"a.log 100 210 link", "link: this is the log; results cannot be written into it."},
      {"a.log 100 210 /dev/full", "/dev/full: Disk full."},
      {"a.log 300 /dev/full", "/dev/full: Disk full."},
      {"a.log 100 210 missing/out.txt", "missing/out.txt: File not found."},
      {"a.log 300 .", ".: Path/File access error."},
  };
  home.write("a.log", kLog);
  std::filesystem::create_symlink(home / "a.log", work / "link");
  for (const auto& [arguments, line] : cases) {
    const auto result = run(arguments);
    EXPECT_EQ(result.status, 1) << arguments;
    EXPECT_EQ(shown(result.err), "quorvel: " + line + "\n") << arguments;
    EXPECT_EQ(result.out, "") << arguments;
    EXPECT_EQ(home.read("a.log"), kLog) << arguments;
    EXPECT_FALSE(work.has("210") || work.has("bob") || work.has("out.txt")) << arguments;
  }
}

TEST_F(EndToEnd, AnyLogIsReadToItsEnd) {
  const std::pair<std::string, std::size_t> cases[] = {
      {"", 0},
      {kLog + std::string(5000, '\0') + kLog.substr(0, 60), 4},
      {kLog.substr(0, kLog.size() / 2), 2},
      {logLine("000001", "Connected to 10.0.0.5 x") + std::string(9000, 'x'), 1},
  };
  for (const auto& [log, connects] : cases) {
    home.write("a.log", log);
    work.write("out.txt", "");
    const auto result = run("a.log 100 210 300 out.txt");
    EXPECT_EQ(result.status, 0) << log.substr(0, 50);
    EXPECT_EQ(result.err, "") << log.substr(0, 50);
    const std::string results = work.read("out.txt");
    EXPECT_EQ(countOf(results, "Counter results: All transfers"), 1U) << log.substr(0, 50);
    EXPECT_GE(countOf(results, ") Connected to 10"), connects) << log.substr(0, 50);
    EXPECT_EQ(home.read("a.log"), log);
  }
}

TEST_F(EndToEnd, OneEndlessLineIsNoProblem) {
  home.write("a.log", logLine("000001", "Connected to 10.0.0.5 x"));
  std::filesystem::resize_file(home / "a.log", 100 * 1024 * 1024);
  const auto result = run("a.log 100 360 NO_USER_FOUND out.txt");
  EXPECT_EQ(std::to_string(result.status) + result.err, "0");
  EXPECT_EQ(countOf(work.read("out.txt"), "Counter results"), 1U);
}

TEST_F(EndToEnd, SettingsAreReadAsFarAsTheyMakeSense) {
  home.write("a.log", kLog);
  setSetting("AutoExit", "yes");
  for (const auto& [value, status] : {std::pair("many", 0), {"3", 1}, {"9", 0}}) {
    setSetting("MaxArguments", value);
    EXPECT_EQ(run("a.log 100 210 out.txt").status, status) << value;
  }
}

TEST_F(EndToEnd, AppendsUnlessTheSettingSaysReplace) {
  home.write("a.log", kLog);
  for (const int expected : {3, 6})
    EXPECT_EQ((run("a.log 100 210 out.txt"), countOf(work.read("out.txt"), "Connected to")), expected);
  Settings(systemFiles(), home.path()).WriteSetting("OPTION-SAVE", "AppendWhenFilter", "0");
  EXPECT_EQ((run("a.log 100 210 out.txt"), countOf(work.read("out.txt"), "Connected to")), 3U);
}

TEST_F(EndToEnd, TellsItsVersionAndUsageWithoutTouchingAnything) {
  EXPECT_EQ(run("--version").out, "quorvel 1.1.400\n");
  EXPECT_NE(run("--help").out.find("360"), std::string::npos);
  EXPECT_FALSE(home.has("quorvel.ini"));
  EXPECT_EQ(run("--help >/dev/full").status, 1);
}

TEST_F(EndToEnd, ClosedStreamsAreNoPlaceForFiles) {
  home.write("a.log", kLog);
  EXPECT_EQ(run("a.log 100 210 300 out.txt <&- >&- 2>&-").status, 0);
  EXPECT_EQ(run("a.log 100 210 missing/out.txt <&- >&- 2>&-").status, 1);
  EXPECT_EQ(countOf(work.read("out.txt"), "quorvel:"), 0U);
  EXPECT_EQ(home.read("a.log"), kLog);
}

#ifndef QUORVEL_HAS_WINDOW
TEST_F(EndToEnd, WithoutAWindowEveryRunIsUnattended) {
  EXPECT_NE(run("").out.find("360"), std::string::npos);
  home.write("a.log", kLog);
  setSetting("AutoExit", "0");
  EXPECT_EQ(run("a.log 100 210 out.txt").status, 0);
  EXPECT_EQ(countOf(work.read("out.txt"), "Connected to"), 3U);
}
#endif

}  // namespace
}  // namespace quorvel::test
