// The counter against plain loops over the lines, on made-up logs.
#include <gtest/gtest.h>

#include "counter/transfer_counter.h"
#include "tests/reference/session_text.h"
#include "tests/support/made_up_log.h"
#include "tests/support/records.h"

namespace quorvel::test {
namespace {

struct FailedLines : CountObserver {
  void onFailedTransfer(std::string_view line, const TransferCount&) override {
    lines.emplace_back(line.substr(std::min<std::size_t>(27, line.size())));
  }
  bool keepGoing(LogPosition) override { return true; }

  std::vector<std::string> lines;
};

/// Expects that count, called with totals and an observer, finds what is expected.
template <typename Count>
void expectCounted(const CountedTransfers& expected, const Count& count) {
  constexpr std::int64_t kOne = 10'000;
  TransferCount totals;
  FailedLines failed;
  EXPECT_TRUE(count(totals, failed).isOk());
  EXPECT_EQ(totals, (TransferCount{expected.sentFiles, expected.receivedFiles, expected.sendErrors,
                                   expected.receiveErrors, expected.bytesSent * kOne, expected.bytesReceived * kOne}));
  EXPECT_EQ(failed.lines, expected.badLines);
}

TEST(CounterComparison, CountsWhatPlainLoopsCount) {
  std::int32_t counted = 0;
  for (std::uint64_t seed = 0; seed < 400 && !HasFailure(); ++seed) {
    const MadeUpLog log(seed);
    for (const UserAct& session : log.sessions) {
      SCOPED_TRACE("seed " + std::to_string(seed) + ", " + describe(session));
      const auto expected = sessionTransfers(log.text, session);
      expectCounted(expected, [&](TransferCount& totals, CountObserver& observer) {
        const SessionSource one = [&, left = 1]() mutable {
          return left-- > 0 ? std::optional(session) : std::nullopt;
        };
        return CountSessionTransfers(log.file, one, {}, totals, observer);
      });
      counted += expected.sentFiles;
    }
    SCOPED_TRACE("seed " + std::to_string(seed) + ", the whole log");
    expectCounted(allTransfers(log.text), [&](TransferCount& totals, CountObserver& observer) {
      return CountAllTransfers(log.file, {}, totals, observer);
    });
  }
  EXPECT_GT(counted, 100);  // the logs do hold transfers
}

}  // namespace
}  // namespace quorvel::test
