// The built program where the system refuses: limits, folders that cannot be written, full disks.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <unistd.h>

#include "tests/faults/program_world.h"
#include "tests/support/program_run.h"

namespace quorvel::test {
namespace {

class Limits : public testing::Test, protected ProgramShell {
 protected:
  Limits() {
    home.write("a.log", longLog(2'000'000));  // long enough to be read and written by threads of their own
    home.write("quorvel.ini", busySettings());
    work.write("out.txt", kOldResults);
  }
  void expectOldFilesAndWholeLines() const {
    const std::string results = work.read("out.txt");
    EXPECT_TRUE(results.starts_with(kOldResults));
    EXPECT_TRUE(results.ends_with("\r\n")) << results.size() << " bytes";
    EXPECT_EQ(home.read("quorvel.ini"), busySettings());
  }
};

TEST_F(Limits, AFileSizeLimitIsAFailedWrite) {
  // The shell counts blocks of 512 bytes; with the smallest limits not even the session records fit.
  for (const int blocks : {0, 1, 8, 64, 300, 500}) {
    SCOPED_TRACE("ulimit -f " + std::to_string(blocks));
    work.write("out.txt", kOldResults);
    const auto result = run("ulimit -f " + std::to_string(blocks) + "; quorvel a.log 100 210 out.txt");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err.empty(), blocks == 0) << "the file that takes the messages has the same limit";
    expectOldFilesAndWholeLines();
  }
  EXPECT_EQ(run("quorvel a.log 100 210 out.txt").status, 0) << "without a limit it works";
}

TEST_F(Limits, AFullDiskIsToldAndKeepsWholeLines) {
  const TempFolder small;
  if (::mount("none", small.path().c_str(), "tmpfs", 0, "size=64k") != 0)
    GTEST_SKIP() << "mounting is not allowed here";
  small.write("out.txt", kOldResults);
  const auto result = run("quorvel a.log 100 210 " + (small / "out.txt").string());
  const std::string results = small.read("out.txt");
  ::umount2(small.path().c_str(), MNT_DETACH);
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("out.txt: Disk full."), std::string::npos) << result.err;
  EXPECT_TRUE(results.starts_with(kOldResults) && results.ends_with("\r\n"));
  EXPECT_GT(results.size(), 60'000u) << "what fits is kept";
}

TEST_F(Limits, WithoutThreadsEverythingIsDoneOnOne) {
  ASSERT_EQ(run("quorvel a.log 100 210 300 out.txt").status, 0);
  const std::string expected = work.read("out.txt");
  work.write("out.txt", kOldResults);
  // No address space has room for a stack of 100 TB, so that no thread can be started.
  const auto result = run("ulimit -s 100000000000 || exit 99; quorvel a.log 100 210 300 out.txt");
  if (result.status == 99) GTEST_SKIP() << "the size of stacks is limited here";
  EXPECT_EQ(std::to_string(result.status) + result.err, "0");
  EXPECT_EQ(work.read("out.txt"), expected);
}

#ifndef __SANITIZE_ADDRESS__  // which reserves more memory than any limit allows
TEST_F(Limits, MemoryThatRunsOutIsTold) {
  const auto under = [this](int kilobytes, const std::string& arguments) {
    return run("ulimit -v " + std::to_string(kilobytes) + "; quorvel " + arguments);
  };
  int least = 3'000;  // what it takes to start
  while (under(least, "--version").status != 0)
    least += least / 50;
  int failed = 0;
  for (int more = 0; more < 10'000 && !HasFailure(); more += 200) {
    SCOPED_TRACE("ulimit -v " + std::to_string(least + more));
    work.write("out.txt", kOldResults);
    const auto result = under(least + more, "a.log 100 210 300 360 alice out.txt");
    EXPECT_TRUE(result.status == 0 || result.status == 1) << result.status << ' ' << result.err;
    EXPECT_EQ(result.err.find("Out of memory.") != std::string::npos, result.status == 1) << result.err;
    expectOldFilesAndWholeLines();
    failed += result.status;
  }
  EXPECT_GT(failed, 0);
}
#endif

TEST_F(Limits, ATerminalTakesNoResults) {
  const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
  if (terminal < 0 || ::grantpt(terminal) != 0 || ::unlockpt(terminal) != 0) GTEST_SKIP() << "no terminals here";
  home.write("a.log", logLines("") + "\x1B]0;title\x07");
  const auto result = run(std::string("quorvel a.log 100 210 300 ") + ::ptsname(terminal));
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("Path/File access error."), std::string::npos) << result.err;
  ::fcntl(terminal, F_SETFL, O_NONBLOCK);
  char received = 0;
  EXPECT_LT(::read(terminal, &received, 1), 1);
  ::close(terminal);
}

}  // namespace
}  // namespace quorvel::test
