// The finder against the literal block-wise scan, on thousands of made-up logs.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/core/found_sessions.h"
#include "tests/reference/session_scan.h"
#include "tests/support/log_maker.h"

namespace quorvel::test {
namespace {

/// Expects the finder to agree with the reference; prints the first record it differs in otherwise.
void expectSame(const std::string& log, const FindOptions& options, const std::vector<UserAct>& expected) {
  const auto found = findSessions(log, options);
  if (found == expected) return;
  const auto [e, f] = std::mismatch(expected.begin(), expected.end(), found.begin(), found.end());
  ADD_FAILURE() << "a log of " << log.size() << " bytes, read " << options.blockSize << " at once, trunk "
                << options.trunkLongUsernames << ": " << found.size() << " sessions for " << expected.size()
                << "\nexpected " << (e == expected.end() ? "none" : describe(*e)) << "\nfound    "
                << (f == found.end() ? "none" : describe(*f));
}

class MadeUpLogs : public testing::TestWithParam<std::uint64_t> {};
constexpr std::uint64_t kLogsPerRange = 250;

TEST_P(MadeUpLogs, FindsWhatTheBlockWiseScanFinds) {
  constexpr std::array<std::size_t, 8> kReadSizes = {256, 1000, 4000, 4096, 5001, 10007, 65536, 1 << 20};
  const std::uint64_t first = GetParam() * kLogsPerRange;
  for (std::uint64_t seed = first; seed < first + kLogsPerRange; ++seed) {
    const std::string log = makeLog(seed);
    FindOptions options;
    options.trunkLongUsernames = seed % 3 != 0;
    const auto expected = scanSessions(log, options.trunkLongUsernames);
    expectSame(log, options, expected);
    options.blockSize = kReadSizes[seed % kReadSizes.size()];
    expectSame(log, options, expected);
    ASSERT_FALSE(HasFailure()) << "seed " << seed;
  }
}
INSTANTIATE_TEST_SUITE_P(Seeds, MadeUpLogs, testing::Range<std::uint64_t>(0, 12));

TEST(FinderComparison, MarksAtTheEdgesOfALogAndOfABlock) {
  std::vector<std::string> logs = {") Connected to ",
                                   ") Connected to - Starting FTP Server...",
                                   ") Connected to 10.0.-        ) Closing connection",
                                   "(000001) Connected to \r",
                                   "(000001) Connected to 1 (000001) USER \r",
                                   "(000001) Connected to 1 (000001) USER"};
  for (const std::string event : {"- (000012) Connected to 2 ", "(000012) USER alice\r", "(000012) QUIT"}) {
    for (std::size_t gap = 3900; gap < 4000; ++gap)
      logs.push_back("* (000012) Connected to 1 " + std::string(gap, '.') + event + std::string(9000, '.'));
  }
  for (const std::string& log : logs)
    expectSame(log, {}, scanSessions(log, true));
}

}  // namespace
}  // namespace quorvel::test
