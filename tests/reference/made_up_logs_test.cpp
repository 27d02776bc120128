// The engine against the literal scans, on thousands of made-up logs.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

#include "tests/reference/comparison.h"
#include "tests/reference/session_scan.h"
#include "tests/support/log_maker.h"

namespace quorvel::test {
namespace {

/// At most 30 sessions of a log, now and then in another order than the log's, with a session of unknown position or
/// an untrue connect time among them.
std::vector<UserAct> someSessions(const std::string& log, std::uint64_t seed) {
  constexpr std::size_t kMostSessions = 30;
  std::mt19937_64 random(seed);
  std::vector<UserAct> sessions = scanSessions(log, true);
  if (seed % 4 == 0) std::shuffle(sessions.begin(), sessions.end(), random);
  if (sessions.size() > kMostSessions) sessions.resize(kMostSessions);
  if (sessions.empty() || seed % 5 != 0) return sessions;
  sessions[random() % sessions.size()].Position = 0;
  sessions[random() % sessions.size()].ConnectTime = "Thu 20Jan05 00:00:00";
  return sessions;
}

class MadeUpLogs : public testing::TestWithParam<std::uint64_t> {};
constexpr std::uint64_t kLogsPerRange = 250;

TEST_P(MadeUpLogs, AreReadAsTheLiteralScansReadThem) {
  constexpr std::array<std::size_t, 8> kReadSizes = {3, 17, 256, 4000, 4096, 5001, 10007, 65536};
  const std::uint64_t first = GetParam() * kLogsPerRange;
  for (std::uint64_t seed = first; seed < first + kLogsPerRange && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const std::string log = makeLog(seed);
    const std::size_t readSize = kReadSizes[seed % kReadSizes.size()];
    FindOptions options;
    options.trunkLongUsernames = seed % 3 != 0;
    EXPECT_EQ(compareFinder(log, options), "");
    options.blockSize = readSize;
    EXPECT_EQ(compareFinder(log, options), "");
    if (seed % 5 != 0) continue;  // the rest takes longer
    const auto sessions = someSessions(log, seed / 5);
    const CommandFilterOptions on{(seed & 1) != 0, (seed & 2) != 0, (seed & 4) != 0, (seed & 8) != 0};
    EXPECT_EQ(compareSessionLines(log, sessions, on, readSize), "");
    EXPECT_EQ(compareCounts(log, sessions), "");
  }
}
INSTANTIATE_TEST_SUITE_P(Seeds, MadeUpLogs, testing::Range<std::uint64_t>(0, 12));

TEST(MadeUpLogs, HaveMarksAtTheEdgesOfALog) {
  for (const std::string log : {") Connected to ", ") Connected to - Starting FTP Server...",
                                ") Connected to 10.0.-        ) Closing connection", "(000001) Connected to \r",
                                "(000001) Connected to 1 (000001) USER \r", "(000001) Connected to 1 (000001) USER"})
    EXPECT_EQ(compareFinder(log, {}), "") << log;
}

}  // namespace
}  // namespace quorvel::test
