#include "report/cell_text.h"

#include <gtest/gtest.h>

namespace quorvel::test {
namespace {

TEST(CellText, TimesAreTheLogsOwn) {
  EXPECT_EQ(timeText(1'118'044'991), "2005-06-06T08:03:11");
  EXPECT_EQ(timeText(UINT32_MAX), "2106-02-07T06:28:15");
  EXPECT_EQ(timeText(kNoTime), "");
  EXPECT_EQ(dayText(86'399), "1970-01-01");
}

TEST(CellText, BytesAreShortAndNeverRoundedToAnotherUnitsThousand) {
  const std::pair<std::int64_t, std::string_view> kTexts[] = {
      {0, "0 B"},
      {999, "999 B"},
      {1000, "1.0 kB"},
      {1049, "1.0 kB"},
      {1050, "1.1 kB"},
      {999'949, "999.9 kB"},
      {999'950, "1.0 MB"},
      {5'700'000, "5.7 MB"},
      {9'999'999'999, "10.0 GB"},
      {INT64_MAX, "9.2 EB"},
  };
  for (const auto& [bytes, text] : kTexts)
    EXPECT_EQ(readableBytes(bytes), text) << bytes;
}

TEST(CellText, CountsAndDurations) {
  EXPECT_EQ(readableCount(999), "999");
  EXPECT_EQ(readableCount(1'234'567), "1,234,567");
  EXPECT_EQ(countOf(1, "line"), "1 line");
  EXPECT_EQ(readableSeconds(41), "0:00:41");
  EXPECT_EQ(readableSeconds(2 * 86400 + 3 * 3600 + 4), "2 d 03:00:04");
}

TEST(CellText, AllButAllIsNotAll) {
  EXPECT_EQ(percentOf(0, 0), 10'000);
  EXPECT_EQ(percentOf(1, 2), 5'000);
  EXPECT_EQ(percentOf(999'999'999, 1'000'000'000), 9'999);
}

TEST(CellText, NothingIsLeftThatATerminalWouldObey) {
  const std::string_view kMark = "\xEF\xBF\xBD";
  for (const std::string_view control :
       {"\x1B", "\x07", "\r", "\n", "\t", "\x7F", "\xC2\x9B", "\xE2\x80\xAE", "\xE2\x81\xA6", "\xE2\x80\xA8"}) {
    EXPECT_EQ(withoutControls("a" + std::string(control) + "b"), "a" + std::string(kMark) + "b");
  }
  EXPECT_EQ(withoutControls("\xC3\xA5ke \xE2\x82\xAC \xF0\x9F\x98\x80"), "\xC3\xA5ke \xE2\x82\xAC \xF0\x9F\x98\x80");
}

}  // namespace
}  // namespace quorvel::test
