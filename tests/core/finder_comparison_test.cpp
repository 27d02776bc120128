// The finder against the literal block-wise scan, on thousands of made-up logs.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "core/servu_find_user_info.h"
#include "tests/reference/session_scan.h"
#include "tests/support/log_maker.h"
#include "tests/support/memory_log.h"
#include "tests/support/records.h"

namespace quorvel {
namespace {

using test::makeLog;
using test::scanSessions;

struct Collector : FindObserver {
  std::vector<UserAct> records;
  void onSession(const UserAct& record) override { records.push_back(record); }
  bool keepGoing(LogPosition) override { return true; }
};

class FinderComparison : public ::testing::Test {
 protected:
  std::vector<UserAct> find(const std::string& log, const FindOptions& options) {
    Collector collector;
    const auto end = ServuFindUserInfo(test::openLog(log), options, collector);
    EXPECT_TRUE(end.isOk());
    return std::move(collector.records);
  }

  /// True when the finder agrees with the reference; prints the first record it differs in otherwise.
  bool agrees(const std::string& log, const FindOptions& options, const std::vector<UserAct>& expected) {
    const auto found = find(log, options);
    if (found == expected) return true;
    const auto [e, f] = std::mismatch(expected.begin(), expected.end(), found.begin(), found.end());
    ADD_FAILURE() << "a log of " << log.size() << " bytes, read " << options.blockSize << " at once, trunk "
                  << options.trunkLongUsernames << ": " << found.size() << " sessions for " << expected.size()
                  << ", first difference in record " << e - expected.begin() + 1 << "\nexpected "
                  << (e == expected.end() ? "none" : test::describe(*e)) << "\nfound    "
                  << (f == found.end() ? "none" : test::describe(*f));
    return false;
  }
};

class MadeUpLogs : public FinderComparison, public ::testing::WithParamInterface<int> {};

constexpr int kLogsPerRange = 250;

TEST_P(MadeUpLogs, FindsWhatTheBlockWiseScanFinds) {
  constexpr std::array<std::size_t, 8> kReadSizes = {256, 1000, 4000, 4096, 5001, 10007, 65536, 1 << 20};
  const int first = GetParam() * kLogsPerRange;
  for (int seed = first; seed < first + kLogsPerRange; ++seed) {
    const std::string log = makeLog(static_cast<std::uint64_t>(seed));
    FindOptions options;
    options.trunkLongUsernames = seed % 3 != 0;
    const auto expected = scanSessions(log, options.trunkLongUsernames);
    bool same = agrees(log, options, expected);
    options.blockSize = kReadSizes[static_cast<std::size_t>(seed) % kReadSizes.size()];
    same = agrees(log, options, expected) && same;
    ASSERT_TRUE(same) << "seed " << seed;
  }
}

TEST_F(FinderComparison, MarksAtTheVeryStartOfALog) {
  for (const char* log :
       {") Connected to ", ") Connected to x", ") Connected to - Starting FTP Server...",
        ") Connected to -        ) Closing connection", ") Connected to 10.0 -        ) Closing connection",
        ") Connected to 10.0.-        ) Closing connection", ") Connected to 10.0 - Starting FTP Server...",
        "(000001) Connected to \r", "(000001) Connected to 1 (000001) USER \r",
        "(000001) Connected to 1 (000001) USER"}) {
    EXPECT_TRUE(agrees(log, {}, scanSessions(log, true))) << log;
  }
}

TEST_F(FinderComparison, TextsAroundTheEndOfTheOnlyBlockOfAnUnendedSession) {
  for (const std::string event : {"- (000012) Connected to 2 ", "(000012) USER alice\r", "(000012) QUIT"}) {
    for (std::size_t gap = 3900; gap < 4000; ++gap) {
      const std::string log = "* (000012) Connected to 1 " + std::string(gap, '.') + event + std::string(9000, '.');
      EXPECT_TRUE(agrees(log, {}, scanSessions(log, true))) << event << " after " << gap;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, MadeUpLogs, ::testing::Range(0, 12));

}  // namespace
}  // namespace quorvel
