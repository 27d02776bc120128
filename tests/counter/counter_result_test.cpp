#include "counter/counter_result.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "counter/bad_transfers.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

constexpr TransferCount kTotals{1, 1, 1, 0, 409'600'000, 10'240'000};

TEST(CounterResult, ShowsByteSumsAndTheHintWhereWanted) {
  const CounterResultOptions all{true, true, "/folder/bad_trans.txt"};
  EXPECT_EQ(counterResultText(kTotals, all),
            "RETR - Server sends: 1 - (40960 bytes)\r\nSTOR - Server receives: 1 - (1024 bytes)\r\n"
            "Total good transfers: 2 - (41984 bytes)\r\n\r\nRETR errors: 1\r\nSTOR errors: 0\r\n"
            "Total bad transfers: 1\r\n\r\nLook in the file:\r\n/folder/bad_trans.txt\r\n"
            "for more info on the bad transfers.");
  constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(counterResultText({kMost, kMost, 0, 0, 0, 0}, {false, true, "x"}),
            "RETR - Server sends: 2147483647\r\nSTOR - Server receives: 2147483647\r\n"
            "Total good transfers: 4294967294\r\n\r\n"
            "RETR errors: 0\r\nSTOR errors: 0\r\nTotal bad transfers: 0");
}

TEST(CounterResult, AppendsBlocksThatAlwaysHoldByteSums) {
  const TempFolder folder;
  const auto path = folder.write("out.txt", "old\r\n");
  const std::string block =
      "\r\n\r\n\r\n-------------------------------\r\nCounter results: IP: 10.0.0.5\r\n\r\n"
      "RETR - Server sends: 2 - (0 bytes)\r\nSTOR - Server receives: 0 - (0 bytes)\r\n"
      "Total good transfers: 2 - (0 bytes)\r\n\r\nRETR errors: 0\r\nSTOR errors: 0\r\nTotal bad transfers: 0\r\n";
  const TransferCount totals{2, 0, 0, 0, 0, 0};
  EXPECT_TRUE(AppendCounterResult(systemFiles(), path, totals, "IP: 10.0.0.5", {false, false, {}}).isOk());
  EXPECT_TRUE(AppendCounterResult(systemFiles(), path, totals, "IP: 10.0.0.5", {false, true, "bad"}).isOk());
  EXPECT_EQ(folder.read("out.txt"),
            "old\r\n" + block + block + "Look in the file:bad\r\nfor more info on the bad transfers.\r\n\r\n");
  EXPECT_FALSE(AppendCounterResult(systemFiles(), folder.path(), totals, "", {}).isOk());
}

TEST(BadTransfers, WritesOneHeaderForEachRun) {
  const TempFolder folder;
  folder.write("bad.txt", "old");
  const std::string line = "[5] Wed 19Jan05 13:29:00 - (000001) Error sending file C:\\c.zip";
  {
    BadTransferLog bad(systemFiles(), folder / "bad.txt");
    bad.LogBadTransfer(line, {});
    bad.LogBadTransfer("short Error sending ", {0, 0, 1, 0, 0, 0});
    bad.LogBadTransfer(line, {0, 0, 0, 1, 0, 0});
  }
  std::string text = folder.read("bad.txt");
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }, '9');
  const std::string entry = "(999999) Error sending file C:\\c.zip\r\n";
  EXPECT_EQ(text, "old\r\n\r\n\r\nCounter ran at:    Date: 9999-99-99    Time: 99:99:99\r\n" + std::string(52, '-') +
                      "\r\n" + entry + "\r\n" + entry);
}

}  // namespace
}  // namespace quorvel::test
