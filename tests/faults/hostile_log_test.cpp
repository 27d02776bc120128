// Logs and settings as no careful server or user leaves them: numbers nobody would write by accident, positions beyond
// 32 bits, and a log that the server writes on, cuts, replaces or removes at any moment.
#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <string>

#include "app/menu_commands.h"
#include "classic/tools/go_to_position.h"
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

const std::filesystem::path kLog = "/program/a.log";

/// Blanks but for some texts.
class SparseFile final : public File {
 public:
  SparseFile(std::uint64_t length, std::map<std::uint64_t, std::string> texts)
      : m_length(length), m_texts(std::move(texts)) {}

  [[nodiscard]] Result<std::size_t> readAt(std::uint64_t offset, std::span<char> buffer) const override {
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), m_length - offset));
    std::fill_n(buffer.begin(), count, ' ');
    for (const auto& [start, text] : m_texts) {
      const std::uint64_t from = std::max(start, offset);
      const std::uint64_t end = std::min(start + text.size(), offset + count);
      if (from < end) text.copy(buffer.data() + (from - offset), end - from, from - start);
    }
    return count;
  }
  Status writeAt(std::uint64_t, std::string_view) override { return Error{ErrorCode::PermissionDenied, {}}; }
  Status append(std::string_view, std::string_view) override { return Error{ErrorCode::PermissionDenied, {}}; }
  Status resize(std::uint64_t) override { return Error{ErrorCode::PermissionDenied, {}}; }
  [[nodiscard]] Result<std::uint64_t> size() const override { return std::uint64_t{m_length}; }
  Status sync() override { return {}; }

 private:
  const std::uint64_t m_length;
  const std::map<std::uint64_t, std::string> m_texts;
};

/// Files in memory; the log is larger than all of it.
struct HugeLogFiles final : MemoryFiles {
  [[nodiscard]] Result<std::unique_ptr<File>> open(const std::filesystem::path& path, OpenMode mode, Owner) override {
    if (path != kLog) return MemoryFiles::open(path, mode);
    return std::unique_ptr<File>(std::make_unique<SparseFile>(std::uint64_t{1} << 32 | 0xFFFFF, texts));
  }
  std::map<std::uint64_t, std::string> texts;
};

TEST(HugeLog, HasEverySessionInEveryCommand) {
  using enum MenuItem;
  // The last position of 31 bits, the first one whose low half is 0, and one beyond both.
  constexpr std::int64_t kPositions[] = {0x7FFF'FFFF, 0x1'0000'0000, 0x1'0000'1000};
  constexpr const char* kNumbers[] = {"(000001)", "(000002)", "(000003)"};
  const std::filesystem::path results = "/program/out.txt";
  HugeLogFiles disk;
  disk.put("/program/quorvel.ini", busySettings());
  for (int i = 0; i < 3; ++i) {
    const std::string lines = logLines(kNumbers[i]);
    disk.texts[static_cast<std::uint64_t>(kPositions[i]) - 3 - lines.find(')')] = "\r\n" + lines;
  }

  ProgramWorld world(disk, "/program");
  world.scanAndTick(kLog);
  auto users = UsersFile::open(disk, "/program/users.qva");
  ASSERT_TRUE(users.isOk() && users.value().recordCount() == 3);
  for (int i = 0; i < 3; ++i) {
    const UserAct& session = *users.value().read(i + 1);
    EXPECT_EQ(session.Position, kPositions[i]);
    EXPECT_EQ(session.NumberInLog, kNumbers[i]);
  }
  EXPECT_EQ(users.value().read(2)->Name, "bob");
  EXPECT_EQ(world.allMessages(), "");

  world.window.TreeView1_NodeClick(kSecondSession);
  EXPECT_NE(world.view.filterText().find("STOR b.txt"), std::string::npos);
  world.view.choose(results);
  runMenuCommand(mnuFilterAll, world.window);
  for (const std::string& line : kLogLines)
    EXPECT_NE(disk.content(results).find(line), std::string::npos) << line;
  world.view.choose(results);
  runMenuCommand(mnuSaveShortInfo, world.window);
  EXPECT_NE(disk.content(results).find(" 4294967296 "), std::string::npos) << disk.content(results);
  const auto shown = textAroundPosition(disk, kLog, "4294967296");
  EXPECT_NE(shown.value_or("").find("(000002\r\n\r\n) Connected to 10.0.0.6"), std::string::npos);
}

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
