// The program killed at any moment. QUORVEL_KILLS in the environment says how often, 20 times when it is not set.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>
#include <thread>

#include "tests/faults/program_world.h"
#include "tests/support/program_run.h"

namespace quorvel::test {
namespace {

using namespace std::chrono_literals;

int rounds() {
  const char* const text = std::getenv("QUORVEL_KILLS");
  return text == nullptr ? 20 : std::atoi(text);
}

/// Sends a signal to a child process that runs work. False when the child had ended by itself, or did so in time.
bool killDuring(const std::function<void()>& work, std::chrono::microseconds after, int signal) {
  const pid_t child = ::fork();
  if (child == 0) {
    work();
    ::_exit(0);
  }
  if (child < 0) {  // signals sent to "process -1" reach every process of the user
    ADD_FAILURE() << "no process could be started";
    return false;
  }
  std::this_thread::sleep_for(after);
  ::kill(child, signal);
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFSIGNALED(status) || WEXITSTATUS(status) != 0;
}

class Killed : public testing::Test, protected ProgramShell {
 protected:
  Killed() {
    home.write("a.log", longLog(4'000'000));
    home.write("quorvel.ini", busySettings());
  }

  /// Kills what does action as often as wanted, within longest, and looks at the files each time.
  void killOften(const std::function<void()>& action, std::chrono::microseconds longest, int signal = SIGKILL) {
    int killed = 0;
    for (int i = 0; i < rounds() && !HasFailure(); ++i) {
      work.write("out.txt", kOldResults);
      const auto after = std::chrono::microseconds(std::uniform_int_distribution<long>(0, longest.count())(random));
      SCOPED_TRACE("signal after " + std::to_string(after.count()) + " us");
      killed += killDuring(action, after, signal) ? 1 : 0;
      expectWholeFiles(signal != SIGKILL);
    }
    RecordProperty("killed", killed);
    EXPECT_GT(killed, 0);
  }
  /// Killed, the program leaves the beginning of what a whole run writes: the system may cut its last write anywhere.
  /// Asked to end, it stops behind a whole line.
  void expectWholeFiles(bool wasAsked) const {
    const std::string results = work.read("out.txt");
    EXPECT_TRUE(results.starts_with(kOldResults));
    EXPECT_TRUE(wasAsked ? results.ends_with("\r\n") : wholeResults.starts_with(results)) << results.size() << " bytes";
    const std::string settingsText = home.read("quorvel.ini");
    EXPECT_TRUE(settingsText.starts_with("[MAIN]\r\nVersion=")) << settingsText;
    EXPECT_TRUE(settingsText.ends_with("[OTHER]\r\nKept=yes\r\n")) << settingsText;
    expectWholeRecords(home.read("users.qva"));
  }
  /// Replaces this process by the program.
  void becomeProgram(const std::string& codes) const {
    ::setenv("QUORVEL_HOME", home.path().c_str(), 1);
    const std::string command =
        "exec '" QUORVEL_EXECUTABLE "' a.log " + codes + " '" + (work / "out.txt").string() + "' 2>/dev/null";
    ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
  }
  /// Runs to the end; notes the results and returns the time it took.
  std::chrono::microseconds runWhole(const std::string& codes) {
    work.write("out.txt", kOldResults);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(run("quorvel a.log " + codes + " out.txt").status, 0);
    wholeResults = work.read("out.txt");
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - begin);
  }

  std::string wholeResults{kOldResults};
  std::mt19937_64 random{std::random_device{}()};
};

TEST_F(Killed, ARunKeepsWhatItWrote) {
  for (const int signal : {SIGKILL, SIGTERM}) {
    for (const char* codes : {"100 210", "100 300 350 10.0.0.5 360 alice"}) {
      SCOPED_TRACE(std::string(codes) + ", signal " + std::to_string(signal));
      const auto longest = runWhole(codes);
      killOften([&] { becomeProgram(codes); }, longest, signal);
      (void)runWhole(codes);  // and the next start works
    }
  }
}

TEST_F(Killed, SettingsAreTheOldOrTheNewOnes) {
  Settings settings(systemFiles(), home.path());
  work.write("out.txt", kOldResults);
  killOften(
      [&settings] {
        for (int i = 0; i < 1000; ++i)
          settings.WriteSetting("Main", "LastOpenFile01", std::string(static_cast<std::size_t>(i % 70), 'x'));
      },
      30ms);
}

TEST_F(Killed, AShortInfoTableKeepsWhatWasWritten) {
  ProgramWorld world(systemFiles(), home.path());
  world.scan(home / "a.log");
  const auto saveTable = [this] {
    ProgramWorld child(systemFiles(), home.path());
    child.window.useLog(home / "a.log", "a.log", LogType::ServU);
    child.view.chooseSave(work / "table.txt");
    child.window.mnuSaveShortInfo_Click();
  };
  killOften(saveTable, 50ms);
  saveTable();
  const std::string table = work.read("table.txt");
  EXPECT_TRUE(table.ends_with("\r\n"));
  EXPECT_GT(table.size(), home.read("users.qva").size());
}

}  // namespace
}  // namespace quorvel::test
