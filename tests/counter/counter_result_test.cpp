#include "counter/counter_result.h"

#include <gtest/gtest.h>

#include <limits>

#include "counter/bad_transfers.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

TEST(CounterResult, HoldsTheLargestCounts) {
  constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
  EXPECT_TRUE(counterResultText({kMost, kMost, kMost, kMost, 0, 0}, {false, false, {}})
                  .starts_with("RETR - Server sends: 2147483647\r\nSTOR - Server receives: 2147483647\r\n"
                               "Total good transfers: 4294967294\r\n\r\nRETR errors: 2147483647\r\n"));
}

TEST(CounterResult, AppendsBlocksThatAlwaysHoldByteSumsAndTheHint) {
  const TempFolder folder;
  const auto path = folder.write("out.txt", "old\r\n");
  EXPECT_TRUE(AppendCounterResult(systemFiles(), path, {2, 0, 0, 1, 15'000, 0}, "What", {false, true, "bad"}).isOk());
  EXPECT_EQ(folder.read("out.txt"),
            "old\r\n\r\n\r\n\r\n-------------------------------\r\nCounter results: What\r\n\r\n"
            "RETR - Server sends: 2 - (1.5 bytes)\r\nSTOR - Server receives: 0 - (0 bytes)\r\n"
            "Total good transfers: 2 - (1.5 bytes)\r\n\r\nRETR errors: 0\r\nSTOR errors: 1\r\n"
            "Total bad transfers: 1\r\nLook in the file:bad\r\nfor more info on the bad transfers.\r\n\r\n");
}

TEST(BadTransfers, WritesOneHeaderForEachRun) {
  const TempFolder folder;
  const std::string line = "[5] Wed 19Jan05 13:29:00 - (000001) Error sending file C:\\c.zip";
  {
    BadTransferLog bad(systemFiles(), folder / "bad.txt");
    bad.LogBadTransfer(line, {});
    bad.LogBadTransfer("short Error sending ", {0, 0, 1, 0, 0, 0});
    bad.LogBadTransfer(line, {0, 0, 0, 1, 0, 0});
  }
  const std::string entry = "(000001) Error sending file C:\\c.zip\r\n";
  const std::string text = folder.read("bad.txt");
  EXPECT_TRUE(text.ends_with(std::string(52, '-') + "\r\n" + entry + "\r\n" + entry)) << text;
  EXPECT_EQ(text.find("Counter ran at:"), text.rfind("Counter ran at:"));
}

}  // namespace
}  // namespace quorvel::test
