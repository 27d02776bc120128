// The built program where the system refuses: limits, folders that cannot be written, full disks.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

#include "core/record_format.h"
#include "tests/faults/program_world.h"
#include "tests/support/program_run.h"

namespace quorvel::test {
namespace {

constexpr std::string_view kOldResults = "of an earlier run\r\n";

class Limits : public testing::Test {
 protected:
  Limits() {
    std::string log;
    for (int i = 0; i < 400; ++i)
      log += logLines("");
    home.write("a.log", log);
    home.write("quorvel.ini", busySettings());
    work.write("out.txt", kOldResults);
  }
  /// Runs the program from the shell, with commands in front of it.
  ProgramRun run(const std::string& before, const std::string& arguments) const {
    const TempFolder script;
    const auto path = script.write("run", before + "\nexec '" QUORVEL_EXECUTABLE "' \"$@\"\n");
    return runProgram("/bin/sh", home, work, path.string() + ' ' + arguments);
  }
  void expectOldFilesAndWholeLines() const {
    const std::string results = work.read("out.txt");
    EXPECT_TRUE(results.starts_with(kOldResults));
    EXPECT_TRUE(results.ends_with("\r\n")) << results.size() << " bytes";
    EXPECT_EQ(home.read("quorvel.ini"), busySettings());
  }

  TempFolder home;
  TempFolder work;
};

TEST_F(Limits, AFileSizeLimitIsAFailedWrite) {
  // The shell counts blocks of 512 bytes; with the smallest limits not even the session records fit.
  for (const int blocks : {0, 1, 8, 64, 300, 500}) {
    SCOPED_TRACE("ulimit -f " + std::to_string(blocks));
    work.write("out.txt", kOldResults);
    const auto result = run("ulimit -f " + std::to_string(blocks), "a.log 100 210 out.txt");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err.empty(), blocks == 0) << "the file that takes the messages has the same limit";
    expectOldFilesAndWholeLines();
  }
  EXPECT_EQ(run("", "a.log 100 210 out.txt").status, 0) << "without a limit it works";
}

TEST_F(Limits, AFullDiskIsToldAndKeepsWholeLines) {
  const TempFolder small;
  if (::mount("none", small.path().c_str(), "tmpfs", 0, "size=64k") != 0)
    GTEST_SKIP() << "mounting is not allowed here";
  small.write("out.txt", kOldResults);
  const auto result = run("", "a.log 100 210 " + (small / "out.txt").string());
  const std::string results = small.read("out.txt");
  ::umount2(small.path().c_str(), MNT_DETACH);
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("out.txt: Disk full."), std::string::npos) << result.err;
  EXPECT_TRUE(results.starts_with(kOldResults) && results.ends_with("\r\n"));
  EXPECT_GT(results.size(), 60'000u) << "what fits is kept";
}

TEST_F(Limits, AProgramFolderThatCannotBeWrittenIsTold) {
  if (::getuid() == 0) {
    // Nothing is forbidden to root: a folder that cannot exist stands for it.
    const auto result = run("export QUORVEL_HOME=/proc/nowhere", (home / "a.log").string() + " 100 210 out.txt");
    EXPECT_NE(result.err, "");
    EXPECT_EQ(work.read("out.txt"), kOldResults);
    return;
  }
  std::filesystem::permissions(home.path(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  EXPECT_NE(run("", "a.log 100 210 out.txt").err, "");
  std::filesystem::permissions(home.path(), std::filesystem::perms::owner_all);
  expectOldFilesAndWholeLines();
}

TEST_F(Limits, ResultsThatCannotBeWrittenAreTold) {
  for (const char* target : {"/proc/out.txt", "/dev/full", "no/such/folder/out.txt", "."}) {
    const auto result = run("", std::string("a.log 100 210 300 ") + target);
    EXPECT_EQ(result.status, 1) << target;
    EXPECT_NE(result.err.find(target), std::string::npos) << result.err;
  }
  expectOldFilesAndWholeLines();
}

}  // namespace
}  // namespace quorvel::test
