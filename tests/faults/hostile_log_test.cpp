// Logs and settings as no careful server or user leaves them: numbers nobody would write by accident, positions no
// record can hold, and a log that the server writes on, cuts, replaces or removes at any moment.
#include <gtest/gtest.h>

#include <limits>
#include <regex>
#include <string>

#include "app/menu_commands.h"
#include "cli/batch_run.h"
#include "tests/support/memory_files.h"
#include "tests/support/program_world.h"

namespace quorvel::test {
namespace {

using namespace std::string_literals;

TEST(HostileNumbers, AnySettingLetsEverythingRun) {
  const std::string digits(400, '9');
  for (const std::string& value :
       {""s, "-1"s, "0"s, "1000000000"s, "2147483648"s, "-99999999999"s, digits, "abc"s, "1e9"s, "\xFF=[;"s}) {
    SCOPED_TRACE(value);
    const TempFolder folder;
    const std::regex anyValue("(\n(?!Version)[^=\r]*=)[^\r]*");
    folder.write("quorvel.ini", std::regex_replace(busySettings(), anyValue, "$1" + value));
    const auto log = folder.write("a.log", logLines(""));
    ProgramWorld world(systemFiles(), folder.path());
    world.scanAndTick(log);
    EXPECT_EQ(folder.read("users.qva").size() / 128, 2u) << "two whole slots and a part of the third";
    (void)world.window.readPlacement();
    (void)runBatch(world.window, log.string() + " 100 210 300 " + (folder / "out.txt").string());
    EXPECT_EQ(folder.read("a.log"), logLines(""));
  }
}

TEST(HostileNumbers, AScanEndsWhereNoRecordCanPoint) {
  constexpr std::int32_t kLast = std::numeric_limits<std::int32_t>::max();
  const TempFolder folder;
  folder.write("quorvel.ini", busySettings());
  const auto path = folder.write("a.log", logLines("(000002)"));
  // The ")" of one connect line lies at the last position that fits, that of the next one just behind it.
  const std::string lines = logLines("(000001) Connected") + logLines("(000003) Connected");
  std::error_code tooLarge;
  std::filesystem::resize_file(path, std::uint64_t{kLast} - lines.find(')') - 1, tooLarge);
  if (tooLarge) GTEST_SKIP() << "no file of 2 GB can be made here";
  std::ofstream(path, std::ios::binary | std::ios::app) << lines << std::string(1000, ' ');

  ProgramWorld world(systemFiles(), folder.path());
  world.scan(path);
  auto users = UsersFile::open(systemFiles(), folder / "users.qva");
  ASSERT_TRUE(users.isOk() && users.value().recordCount() == 2);
  EXPECT_EQ(users.value().read(1)->Name, "bob");
  EXPECT_EQ(users.value().read(2)->Position, kLast);
  const std::string errors = folder.read("error.log");
  EXPECT_NE(errors.find("VB Error No. 6\r\nVB Error Description: Overflow\r\n"), std::string::npos);
  EXPECT_EQ(errors.find("VB Error No."), errors.rfind("VB Error No.")) << "one block";
  EXPECT_TRUE(world.allMessages().starts_with("One or more errors where generated")) << world.allMessages();
  EXPECT_GT(world.state.tree.nodeCount(), 0);
}

const std::filesystem::path kLog = "/program/a.log";

/// From opening the log to clicking its sessions. The change happens before call number n that concerns the log; the
/// result is the number of such calls.
int work(void (*change)(MemoryFiles&), int n) {
  using enum MenuItem;
  static const std::string kLong = longLog(1'800'000, 8000);  // read in several pieces, by a thread
  const std::filesystem::path results = "/program/out.txt";
  MemoryFiles disk;
  disk.put("/program/quorvel.ini", busySettings());
  disk.put(results, kOldResults);
  disk.put(kLog, kLong);
  ProgramWorld world(disk, "/program");
  int calls = 0;
  disk.beforeEachCall([&](const std::filesystem::path& path) {
    if (path == kLog && ++calls == n) change(disk);
  });
  world.window.openLogFile(kLog);
  world.scanAndTick(kLog);
  for (std::int32_t node = 1; node <= std::min(world.state.tree.nodeCount(), 10); ++node)
    world.window.TreeView1_NodeClick(node);
  for (const MenuItem item : {mnuFilterAll, mnuFilterSelected, mnuCountAllTransfers, mnuCountUsersTransfers}) {
    world.view.choose(results);
    runMenuCommand(item, world.window);
  }
  world.expectIdle();
  EXPECT_TRUE(disk.content(results).starts_with(kOldResults) && disk.content(results).ends_with("\r\n"));
  expectWholeRecords(disk.content("/program/users.qva"));
  return calls;
}

TEST(ChangingLog, IsSurvivedAtEveryCall) {
  const std::pair<const char*, void (*)(MemoryFiles&)> changes[] = {
      {"grows", [](MemoryFiles& disk) { (void)disk.open(kLog, OpenMode::Append).value()->append(logLines(""), {}); }},
      {"is cut", [](MemoryFiles& disk) { (void)disk.open(kLog, OpenMode::ReadWrite).value()->resize(1000); }},
      {"is emptied", [](MemoryFiles& disk) { (void)disk.open(kLog, OpenMode::ReadWrite).value()->resize(0); }},
      {"is replaced", [](MemoryFiles& disk) { disk.put(kLog, logLines("(000002)")); }},
      {"disappears", [](MemoryFiles& disk) { (void)disk.remove(kLog); }},
  };
  for (const auto& [name, change] : changes) {
    const int calls = work(change, 0);
    EXPECT_GT(calls, 20);
    for (int n = 1; n <= calls && !HasFailure(); ++n) {
      SCOPED_TRACE(name + std::string(" before call ") + std::to_string(n));
      (void)work(change, n);
    }
  }
}

}  // namespace
}  // namespace quorvel::test
