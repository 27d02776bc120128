// The searches by themselves, each with the bytes it looks through per second.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "classic/find/servu_find_user_info.h"
#include "log/byte_scan.h"
#include "log/byte_scan_variants.h"
#include "tests/classic/reference/literal_scans.h"

namespace quorvel {
namespace {

/// Sessions one behind the other, fourteen lines each.
std::string makeText(std::size_t size) {
  constexpr std::array kEvents = {
      "Connected to 192.0.2.7 (Local address 192.0.2.1)",
      "220 FTP Server ready...",
      "USER alice",
      "331 User name okay, need password.",
      "PASS xxxxx",
      "User alice logged in",
      "230 User logged in, proceed.",
      "PORT 192,0,2,7,4,31",
      "RETR pub/manuals/volume-3.zip",
      "150 Opening BINARY mode data connection for volume-3.zip (40960 bytes).",
      "Sent file C:\\ftp\\pub\\manuals\\volume-3.zip successfully (12.5 Kb/sec - 40960 bytes)",
      "226 Transfer complete.",
      "QUIT",
      "Closing connection for user ALICE (00:01:08 connected)"};
  std::string text;
  text.reserve(size + 256);
  for (unsigned line = 0; text.size() < size; ++line) {
    std::array<char, 64> head{};
    const auto session = static_cast<unsigned>(line / kEvents.size() % 1'000'000);
    const int length = std::snprintf(head.data(), head.size(), "[2] Wed 19Jan05 13:28:08 - (%06u) ", session);
    text.append(head.data(), static_cast<std::size_t>(length)).append(kEvents[line % kEvents.size()]).append("\r\n");
  }
  return text;
}

constexpr std::size_t kTextSize = 64 * 1024 * 1024;

const std::string& text() {
  static const std::string made = makeText(kTextSize);
  return made;
}

void countBytes(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text().size()));
}

/// The yardstick: what the C library needs to find every line end.
void findLineEnds(benchmark::State& state) {
  for (auto _ : state) {
    std::size_t lines = 0;
    const char* const end = text().data() + text().size();
    for (const void* at = text().data();
         (at = std::memchr(at, '\n', static_cast<std::size_t>(end - static_cast<const char*>(at)))) != nullptr;
         at = static_cast<const char*>(at) + 1) {
      ++lines;
    }
    benchmark::DoNotOptimize(lines);
  }
  countBytes(state);
}
BENCHMARK(findLineEnds)->Unit(benchmark::kMillisecond);

void scan(benchmark::State& state, ScanFor what) {
  std::vector<std::uint32_t> offsets;
  for (auto _ : state) {
    scanBytes(what, text().data(), text().size() - kScanSlack, offsets);
    benchmark::DoNotOptimize(offsets.data());
  }
  countBytes(state);
}
BENCHMARK_CAPTURE(scan, sessionEvents, ScanFor::SessionEvents)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scan, sessionLines, ScanFor::SessionLines)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scan, transfers, ScanFor::Transfers)->Unit(benchmark::kMillisecond);

/// The same without the instructions that not every machine has.
void scanPortably(benchmark::State& state) {
  constexpr std::size_t kPiece = 4096;
  std::vector<std::uint32_t> offsets(kPiece + kScanSlack);
  const ByteScanFunction function = portableByteScan().sessionEvents;
  for (auto _ : state) {
    for (std::size_t at = 0; at + kPiece + kScanSlack < text().size(); at += kPiece) {
      benchmark::DoNotOptimize(function(text().data() + at, kPiece, offsets.data()));
    }
  }
  countBytes(state);
}
BENCHMARK(scanPortably)->Unit(benchmark::kMillisecond);

struct CountingObserver : FindObserver {
  int sessions = 0;
  void onSession(const FoundSession&) override { ++sessions; }
  bool keepGoing(LogPosition) override { return true; }
};

/// The whole finder, records made and thrown away.
void findSessions(benchmark::State& state) {
  const auto path = std::filesystem::temp_directory_path() / "quorvel-search-bench.log";
  std::ofstream(path, std::ios::binary) << text();
  const auto log = LogFile::open(systemFiles(), path);
  CountingObserver observer;
  for (auto _ : state) {
    if (!log.isOk() || !ServuFindUserInfo(log.value(), {}, observer).isOk()) state.SkipWithError("cannot read the log");
  }
  countBytes(state);
  std::filesystem::remove(path);
}
BENCHMARK(findSessions)->Unit(benchmark::kMillisecond)->UseRealTime();

/// The literal block-wise scan that the tests compare with, on a log it can manage.
void findSessionsLiterally(benchmark::State& state) {
  const std::string log = text().substr(0, 1024 * 1024);
  for (auto _ : state)
    benchmark::DoNotOptimize(test::scanSessions(log, true));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(log.size()));
}
BENCHMARK(findSessionsLiterally)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quorvel
