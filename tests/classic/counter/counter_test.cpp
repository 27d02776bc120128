// Counts are compared with the literal scan of a log; here is what only huge logs and numbers show.
#include <gtest/gtest.h>

#include <limits>

#include "classic/counter/counter_result.h"
#include "classic/counter/transfer_counter.h"
#include "tests/support/opened_log.h"

namespace quorvel::test {
namespace {

const std::string kSent =
    "[6] Wed 19Jan05 13:28:20 - (000001) Sent file C:\\a.zip successfully (12.5 Kb/sec - 40960 bytes)\r\n";
const std::string kReceived =
    "[6] Wed 19Jan05 13:28:40 - (000001) Received file C:\\b successfully (3.1 Kb/sec - 1024 bytes)\r\n";

struct Observer : CountObserver {
  void onFailedTransfer(std::string_view line, bool isFirst) override {
    failed.push_back((isFirst ? "first: " : "later: ") + std::string(line));
  }
  bool keepGoing(LogPosition) override { return !stops; }

  std::vector<std::string> failed;
  bool stops = false;
};

TransferCount countAll(const std::string& text, Observer& observer) {
  TransferCount totals;
  EXPECT_TRUE(CountAllTransfers(openLog(text), {.countBytes = true, .showsFailures = true}, totals, observer).isOk());
  return totals;
}

TEST(TransferCounter, FindsTokensAcrossBlocksUnlessStopped) {
  constexpr std::size_t kBlock = 1024 * 1024;
  Observer observer;
  for (std::size_t before = kBlock - kSent.size() - 5; before < kBlock + 5; before += 7) {
    const std::string text = std::string(before, '-') + "\r\n" + kSent + kReceived;
    EXPECT_EQ(countAll(text, observer), (TransferCount{1, 1, 0, 0, 409'600'000, 10'240'000})) << before;
  }
  observer.stops = true;
  EXPECT_EQ(countAll(kSent + std::string(3 * kBlock, 'x') + "\r\n" + kReceived, observer).ReceivedFiles, 0);
}

TEST(TransferCounter, CountsLinesLongerThanItsMemory) {
  for (const std::size_t length : {300'000u, 1'048'500u, 1'048'570u, 1'048'576u, 3'000'000u}) {
    const std::string filler(length, 'x');
    const std::string text = kSent + "y Sent file " + filler + " (9 Kb/sec - 77 bytes)" + filler + "\r\n" + kReceived +
                             "begin Error sending " + filler + " end\r\n" + filler + " Received file ";
    Observer observer;
    EXPECT_EQ(countAll(text, observer), (TransferCount{2, 2, 1, 0, 410'370'000, 10'240'000})) << length;
    ASSERT_EQ(observer.failed.size(), 1u);
    EXPECT_TRUE(observer.failed[0].starts_with("first: begin Error sending xxx"));
    EXPECT_TRUE(observer.failed[0].ends_with("xxx end"));
  }
}

constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
constexpr auto kMin = std::numeric_limits<std::int64_t>::min();

// Any text is compared with the C library in a fuzz target, up to half of the last decimal.
TEST(FixedPoint, RoundsHalvesToEvenAndAddsWithoutALimit) {
  EXPECT_EQ(parseFixedPoint("0.00015"), 2);
  EXPECT_EQ(parseFixedPoint("0.00025"), 2);
  EXPECT_EQ(parseFixedPoint("0.000250000000000000000001"), 3);
  EXPECT_EQ(fixedPointSumText(10'000, -5'000) + ' ' + fixedPointSumText(-30'000, 5'000), "0.5 -2.5");
  EXPECT_EQ(fixedPointSumText(kMax, kMax), "1844674407370955.1614");
  EXPECT_EQ(fixedPointSumText(kMin, kMin), "-1844674407370955.1616");
}

TEST(TransferCount, NeverWrapsAround) {
  constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
  TransferCount totals{kMost, kMost, kMost, kMost, kMax - 1, kMin + 1};
  countMore(totals.SentFiles, 3);
  addBytes(totals.BytesSent, 2);
  addBytes(totals.BytesReceived, -2);
  EXPECT_EQ(totals, (TransferCount{kMost, kMost, kMost, kMost, kMax - 1, kMin + 1}));
  addBytes(totals.BytesSent, 1, 3);
  addBytes(totals.BytesReceived, -1, 3);
  EXPECT_EQ(totals, (TransferCount{kMost, kMost, kMost, kMost, kMax, kMin}));
  const std::string text = counterResultText(totals, {false, false, {}});
  EXPECT_NE(text.find("transfers: 4294967294\r\n\r\nRETR errors: 2147483647\r\n"), std::string::npos) << text;
}

}  // namespace
}  // namespace quorvel::test
