// What the session tree of a large log costs: time to build it, and bytes per session once it stands.
#include <benchmark/benchmark.h>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include <cstdio>
#include <filesystem>
#include <string>

#include "classic/find/record_format.h"
#include "classic/find/users_file.h"
#include "classic/tree/add_to_tree_view.h"

namespace quorvel {
namespace {

constexpr std::int32_t kSessions = 1'000'000;

std::string numbered(const char* format, std::int32_t number) {
  char text[32];
  std::snprintf(text, sizeof text, format, number);
  return text;
}

/// One user or address in twenty sessions is new.
UserAct session(std::int32_t number) {
  const std::int32_t who = static_cast<std::int32_t>(number * 2654435761LL % (kSessions / 20));
  UserAct record;
  record.Position = number;
  record.Name = numbered("user%d", who);
  record.NumberInLog = numbered("(%06d)", number % 1'000'000);
  record.IP =
      "10." + std::to_string(who >> 16) + "." + std::to_string(who >> 8 & 255) + "." + std::to_string(who & 255);
  record.ConnectTime = record.LogonTime = record.LogoffTime = "[5] Wed 19Jan05 13:28";
  record.LogonNo = number;
  return record;
}

std::filesystem::path usersFilePath() {
  return std::filesystem::temp_directory_path() / "quorvel-tree-bench.qva";
}

void writeUsersFile() {
  (void)systemFiles().remove(usersFilePath());
  UsersFileWriter writer(systemFiles(), usersFilePath(), [](const UserAct&, std::int32_t, const Error&) {});
  for (std::int32_t number = 1; number <= kSessions; ++number)
    writer.WriteSessionRecord(encodeRecord(session(number)), number);
}

std::size_t bytesAllocated() {
#if defined(__GLIBC__)
  const auto info = mallinfo2();
  return info.uordblks + info.hblkhd;
#else
  return 0;
#endif
}

/// Argument: the layout. Reads the users file and writes the tree indexes back, as the program does.
void BuildSessionTree(benchmark::State& state) {
  writeUsersFile();
  for (auto _ : state) {
    state.PauseTiming();
    const std::size_t before = bytesAllocated();
    auto tree = std::make_unique<SessionTree>();
    state.ResumeTiming();
    {
      auto users = UsersFile::open(systemFiles(), usersFilePath(), OpenMode::ReadWrite);
      AddToTreeView(users.value(), {static_cast<int>(state.range(0)), true}, *tree, [] { return true; });
    }
    benchmark::DoNotOptimize(tree->parentCount());  // sorts the children, as the first drawing does
    state.PauseTiming();
    tree->setChecked(tree->nodeCount(), true);
    state.counters["nodes"] = tree->nodeCount();
    state.counters["bytes/session"] = static_cast<double>(bytesAllocated() - before) / kSessions;
    tree.reset();
    state.ResumeTiming();
  }
  (void)systemFiles().remove(usersFilePath());
}
BENCHMARK(BuildSessionTree)->DenseRange(0, kTreeLayoutCount - 1)->Unit(benchmark::kMillisecond);

/// The nodes alone, without the users file.
void FillModel(benchmark::State& state) {
  std::vector<UserAct> records;
  for (std::int32_t number = 1; number <= kSessions; ++number)
    records.push_back(session(number));
  for (auto _ : state) {
    SessionTree tree;
    tree.clear({"", "a"});
    for (const UserAct& record : records) {
      tree.addParent(record.Name);
      tree.addChild(record.Name, record.LogonNo, record.LogonTime);
    }
    benchmark::DoNotOptimize(tree.parentCount());
  }
}
BENCHMARK(FillModel)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quorvel
