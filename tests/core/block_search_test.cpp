// The reference by itself, with blocks small enough to check by eye.
#include "tests/reference/block_search.h"

#include <gtest/gtest.h>

namespace quorvel::test {
namespace {

TEST(BlockSearch, FindsTextWhereverTheBlocksEnd) {
  for (std::size_t before = 0; before < 60; ++before) {
    const BlockSearch search(std::string(before, '.') + "NeEdLe" + std::string(30, '.'), 16);
    EXPECT_EQ(search.FindForward("needle", 1), static_cast<std::int64_t>(before) + 1);
  }
  EXPECT_EQ(BlockSearch("abc", 16).FindForward("x", 1), 0);
  EXPECT_EQ(BlockSearch("abc", 16).FindForward("c  ", 1), 3) << "blanks follow the end";
  EXPECT_EQ(BlockSearch("abc", 16).FindForward("c", 3), 0) << "a last byte alone is not looked at";
}

TEST(BlockSearch, AcceptsAHitBeyondTheLimitInABlockItRead) {
  const BlockSearch search("..........XX" + std::string(40, '.') + "XX", 16);  // hits at 11 and 53
  EXPECT_EQ(search.FindForwardLimited("xx", 1, 0), 11);
  EXPECT_EQ(search.FindForwardLimited("xx", 12, 39), 0) << "blocks start at 12, 26, 40, 54";
  EXPECT_EQ(search.FindForwardLimited("xx", 12, 40), 53);
  EXPECT_EQ(search.FindForwardLimited("xx", 54, 99), 54) << "at the end the start comes back";
  EXPECT_EQ(search.FindForwardLimited("xx", 70, 99), 70);
}

TEST(BlockSearch, TakesTheEarlierEndOfASession) {
  const std::string start = "- Starting FTP Server...";
  const auto end = [](const std::string& log) { return BlockSearch(log, 100).FindSessionEnd(2, "- (1) Closing"); };
  EXPECT_EQ(end("x - (1) closing " + start).position, 3);
  EXPECT_FALSE(end("x - (1) closing " + start).isServerStart);
  EXPECT_EQ(end("x " + start + " - (1) closing").position, 3);
  EXPECT_TRUE(end("x " + start + " - (1) closing").isServerStart);
  EXPECT_EQ(end(std::string(150, '.') + start).position, 151);
  EXPECT_EQ(end("nothing").position, 0);
  EXPECT_EQ(end("x").position, 2) << "at the end the start comes back";
}

TEST(BlockSearch, CopiesBlanksFromOutsideTheLog) {
  const BlockSearch search("abc", 16);
  EXPECT_EQ(search.bytesAt(-1, 6), "  abc ");
  EXPECT_EQ(search.textUpTo('c', 1), "ab");
  EXPECT_EQ(search.textUpTo('x', 2), "bc");
  EXPECT_EQ(search.textUpTo('c', 3), "");
  EXPECT_EQ(search.textUpTo('x', 9), "");
}

}  // namespace
}  // namespace quorvel::test
