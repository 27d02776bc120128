#include "counter/transfer_count.h"

#include <gtest/gtest.h>

#include <limits>

namespace quorvel::test {
namespace {

constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
constexpr auto kMin = std::numeric_limits<std::int64_t>::min();

TEST(FixedPoint, ReadsDecimalNumbersAndNothingElse) {
  const std::pair<std::string, std::int64_t> numbers[] = {
      {"0.00005", 0},  // a half goes to the even one
      {"0.00015", 2},
      {"0.00025", 2},
      {"0.000051", 1},
      {"0.e51000004", 0},
      {"1e-99999999999", 0},
      {"0." + std::string(400, '0') + "7e401", 70'000},
      {"922337203685477.5807", kMax},
      {"-922337203685477.5808", kMin},
  };
  for (const auto& [text, value] : numbers)
    EXPECT_EQ(parseFixedPoint(text), value) << text;
  for (const char* text : {"", "-", ".", "12 34", "0x10", "1e", "1e99999999999", "922337203685477.5808"})
    EXPECT_FALSE(parseFixedPoint(text)) << text;
  EXPECT_FALSE(parseFixedPoint(std::string(5'000, '0')) || parseFixedPoint(std::string("1\0", 2)));
}

TEST(FixedPoint, PrintsSumsWithoutClosingZeros) {
  EXPECT_EQ(fixedPointSumText(10'000, 1), "1.0001");
  EXPECT_EQ(fixedPointSumText(10'000, -15'000), "-0.5");
  EXPECT_EQ(fixedPointSumText(-30'000, 5'000), "-2.5");
  EXPECT_EQ(fixedPointSumText(kMax, kMax), "1844674407370955.1614");
  EXPECT_EQ(fixedPointSumText(kMin, kMin), "-1844674407370955.1616");
}

TEST(TransferCount, NeverWrapsAround) {
  std::int32_t count = std::numeric_limits<std::int32_t>::max();
  countOne(count);
  EXPECT_EQ(count, std::numeric_limits<std::int32_t>::max());
  for (const auto& [sum, added] : {std::pair(kMax - 1, 2), {kMin + 1, -2}}) {
    std::int64_t total = sum;
    addBytes(total, added);
    EXPECT_EQ(total, sum);
    addBytes(total, added / 2);
    EXPECT_EQ(total, sum + added / 2);
  }
}

}  // namespace
}  // namespace quorvel::test
