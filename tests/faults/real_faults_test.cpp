// The built program killed at any moment, and where the system refuses: limits, full disks, terminals. QUORVEL_KILLS in
// the environment says how often it is killed, 20 times when it is not set.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <functional>
#include <random>
#include <regex>
#include <stdexcept>
#include <thread>

#include "classic/find/record_format.h"
#include "classic/find/users_file.h"
#include "tests/support/program_run.h"
#include "tests/support/program_world.h"
#include "tests/support/sanitizers.h"

namespace quorvel::test {
namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;

class RealFaults : public testing::Test, protected ProgramShell {
 protected:
  RealFaults() {
    home.write("a.log", longLog(4'000'000));  // long enough to be read and written by threads of their own
    home.write("quorvel.ini", busySettings());
    work.write("out.txt", kOldResults);
  }
  enum class LastLine {
    Whole,
    MayBeTorn,  ///< by a kill
  };
  void expectWholeFiles(LastLine lastLine = LastLine::Whole) const {
    const std::string results = work.read("out.txt");
    EXPECT_TRUE(results.starts_with(kOldResults));
    EXPECT_TRUE(lastLine == LastLine::MayBeTorn || results.ends_with("\r\n")) << results.size() << " bytes";
    const std::regex written("(LastSavePath=)[^\r]*|LastOpenFile0.=x*\r\n");  // by a process that was killed
    EXPECT_EQ(std::regex_replace(home.read("quorvel.ini"), written, "$1"), busySettings());
    expectWholeRecords(home.read("users.qva"));
  }
};
using Limits = RealFaults;

/// Kills a child process that does some work, and waits for all that it started. False when it had ended by itself.
bool killDuring(const std::function<void()>& work, microseconds after) {
  std::array<int, 2> alive{};  // a pipe that all of them hold open
  EXPECT_EQ(::pipe(alive.data()), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    work();
    ::_exit(0);
  }
  // A signal sent to "process -1" reaches every process of the user.
  if (child < 0) throw std::runtime_error("no process could be started");
  ::close(alive[1]);
  std::this_thread::sleep_for(after);
  ::kill(child, SIGKILL);
  int status = 0;
  ::waitpid(child, &status, 0);
  char nothing = 0;
  EXPECT_EQ(::read(alive[0], &nothing, 1), 0);
  ::close(alive[0]);
  return WIFSIGNALED(status);
}

class Killed : public RealFaults {
 protected:
  /// Does what is killed after a time within longest, and says whether it was, as often as wanted, and looks at the
  /// files each time.
  void killOften(microseconds longest, const std::function<bool(microseconds)>& isKilledAfter) {
    const char* const wanted = ::getenv("QUORVEL_KILLS");
    int killed = 0;
    for (int left = wanted == nullptr ? 20 : std::atoi(wanted); left > 0 && !HasFailure(); --left) {
      work.write("out.txt", kOldResults);
      const microseconds after(std::uniform_int_distribution<long>(1, longest.count())(m_random));
      SCOPED_TRACE("signal after " + std::to_string(after.count()) + " us");
      killed += isKilledAfter(after) ? 1 : 0;
      expectWholeFiles(LastLine::MayBeTorn);
    }
    RecordProperty("killed", killed);
    EXPECT_GT(killed, 0);
  }

 private:
  std::mt19937_64 m_random{std::random_device{}()};
};

TEST_F(Killed, ARunKeepsWhatItWrote) {
  for (const std::string arguments : {"a.log 100 210 out.txt", "a.log 100 300 350 10.0.0.5 360 alice out.txt"}) {
    work.write("out.txt", kOldResults);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(run("quorvel " + arguments).status, 0);
    const auto longest = std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now() - begin);
    const std::string whole = work.read("out.txt");
    for (const std::string signal : {"KILL", "TERM"}) {
      SCOPED_TRACE(arguments + ", signal " + signal);
      killOften(longest, [&](microseconds after) {
        // What stands in $() has come to its end with the last process that can write there.
        const std::string time = std::to_string(static_cast<double>(after.count()) / 1e6);
        const auto killed =
            run("ended=$(timeout --foreground -s " + signal + ' ' + time + " quorvel " + arguments + " 2>&1)");
        std::string left = work.read("out.txt");
        if (signal == "TERM") expectWholeFiles();
        if (signal == "KILL") {
          EXPECT_TRUE(whole.starts_with(left));
          if (!left.ends_with('\n')) left += "\r\n";
          EXPECT_EQ(run("quorvel " + arguments).status, 0) << "the next start";
          EXPECT_TRUE(work.read("out.txt") == left + whole.substr(kOldResults.size()));
        }
        return killed.status != 0;
      });
    }
  }
}

TEST_F(Killed, SettingsAreTheOldOrTheNewOnes) {
  Settings settings(systemFiles(), home.path());
  const auto writeMany = [&settings] {
    for (std::size_t i = 0; i < 1000; ++i)
      settings.WriteSetting("Main", "LastOpenFile01", std::string(i % 70, 'x'));
  };
  killOften(30ms, [&](microseconds after) { return killDuring(writeMany, after); });
}

TEST_F(Killed, AShortInfoTableKeepsWhatWasWritten) {
  const auto saveTable = [this] {
    ProgramWorld child(systemFiles(), home.path());
    child.scan(home / "a.log");
    child.view.choose(work / "table.txt");
    child.window.mnuSaveShortInfo_Click();
  };
  saveTable();
  EXPECT_GT(work.read("table.txt").size(), home.read("users.qva").size());
  killOften(100ms, [&](microseconds after) { return killDuring(saveTable, after); });
}

TEST_F(Limits, AFileSizeLimitIsAFailedWrite) {
  // The shell counts blocks of 512 bytes; with the smallest limits not even the session records fit.
  for (const int blocks : {0, 1, 8, 64, 300, 500}) {
    SCOPED_TRACE("ulimit -f " + std::to_string(blocks));
    work.write("out.txt", kOldResults);
    const auto result = run("ulimit -f " + std::to_string(blocks) + "; quorvel a.log 100 210 out.txt");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err.empty(), blocks == 0) << "the file that takes the messages has the same limit";
    expectWholeFiles();
  }
  EXPECT_EQ(run("quorvel a.log 100 210 out.txt").status, 0) << "without a limit it works";
}

TEST_F(Limits, AFullDiskIsToldAndKeepsWholeLines) {
  if (::mount("none", work.path().c_str(), "tmpfs", 0, "size=64k") != 0) GTEST_SKIP() << "mounting is not allowed here";
  work.write("out.txt", kOldResults);
  const auto result = run("quorvel a.log 100 210 out.txt");
  expectWholeFiles();
  EXPECT_GT(work.read("out.txt").size(), 60'000u) << "what fits is kept";
  ::umount2(work.path().c_str(), MNT_DETACH);
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("out.txt: Disk full."), std::string::npos) << result.err;
}

TEST_F(Limits, WithoutThreadsEverythingIsDoneOnOne) {
  ASSERT_EQ(run("quorvel a.log 100 210 300 expected.txt").status, 0);
  // No address space has room for a stack of 100 TB, so that no thread can be started.
  const auto result = run("ulimit -s 100000000000 || exit 99; quorvel a.log 100 210 300 found.txt");
  if (result.status == 99) GTEST_SKIP() << "the size of stacks is limited here";
  EXPECT_EQ(std::to_string(result.status) + result.err, "0");
  EXPECT_EQ(work.read("found.txt"), work.read("expected.txt"));
}

#ifndef QUORVEL_ADDRESS_SANITIZER  // which reserves more memory than any limit allows
TEST_F(Limits, MemoryThatRunsOutIsTold) {
  const auto under = [this](int kilobytes, const std::string& arguments) {
    return run("ulimit -v " + std::to_string(kilobytes) + "; quorvel " + arguments);
  };
  int least = 3'000;  // what it takes to start
  while (under(least, "--version").status != 0)
    least += least / 50;
  int failed = 0;
  for (int limit = least; limit < least + 10'000 && !HasFailure(); limit += 200) {
    SCOPED_TRACE("ulimit -v " + std::to_string(limit));
    work.write("out.txt", kOldResults);
    const auto result = under(limit, "a.log 100 210 300 360 alice out.txt");
    EXPECT_TRUE(result.status == 0 || result.status == 1) << result.status << ' ' << result.err;
    EXPECT_EQ(result.err.find("Out of memory.") != std::string::npos, result.status == 1) << result.err;
    expectWholeFiles();
    failed += result.status;
  }
  EXPECT_GT(failed, 0);
}
#endif

TEST_F(Limits, ATerminalTakesResultsItCannotObey) {
  const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
  if (terminal < 0 || ::grantpt(terminal) != 0 || ::unlockpt(terminal) != 0) GTEST_SKIP() << "no terminals here";
  const std::string name = ::ptsname(terminal);
  const int keptOpen = ::open(name.c_str(), O_RDWR | O_NOCTTY);  // so that what was written stays there to be read
  home.write("a.log", logLines("(000002)") + "(000002) \x1B]0;title\x07 caf\xE9 \xC2\x9B\r\n");
  EXPECT_EQ(run("quorvel a.log 100 210 " + name).status, 0);
  std::string received(4096, '\0');
  const auto count = ::read(terminal, received.data(), received.size());
  received.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  EXPECT_NE(received.find("(000002) Connected to"), std::string::npos) << received;
  EXPECT_EQ(received.find('\x1B'), std::string::npos) << received;
  ::close(keptOpen);
  ::close(terminal);
}

TEST_F(Limits, AReaderThatTakesNothingHoldsNothingUp) {
  work.write("a.log", longLog(4'000'000));
  for (const std::string reader : {"sleep 60 <pipe", "true"}) {  // one that never reads, and none at all
    SCOPED_TRACE(reader);
    const auto ended =
        run("mkfifo pipe; { " + reader + "; } & timeout -s TERM 2 quorvel a.log 100 210 pipe; echo $?; " +
            "kill $! 2>/dev/null; rm pipe; rm -rf pipe");
    EXPECT_EQ(ended.out, "124\n") << ended.err;
  }
}

}  // namespace
}  // namespace quorvel::test
