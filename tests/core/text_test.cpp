#include "core/text.h"

#include <gtest/gtest.h>

#include "tests/reference/block_search.h"

namespace quorvel {
namespace {

std::string allBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte)
    bytes += static_cast<char>(byte);
  return bytes;
}

TEST(Text, FoldsTheLettersOfWindows1252) {
  EXPECT_EQ(foldCase(allBytes()), test::lowerCase(allBytes()));
}

TEST(Text, ComparesWithoutRegardToCase) {
  EXPECT_TRUE(equalsFolded("J\xD6RG \x8A", "j\xF6rg \x9A"));
  EXPECT_FALSE(equalsFolded("\xD7", "\xF7")) << "multiplication and division";
  EXPECT_FALSE(equalsFolded("abc", "ab"));
  EXPECT_TRUE(startsWithFolded("ABC", "ab"));
  EXPECT_FALSE(startsWithFolded("a", "ab"));
  EXPECT_EQ(findFolded("xxABCabc", "abC"), 2u);
  EXPECT_EQ(findFolded("xxABCabc", "abC", 3), 5u);
  EXPECT_EQ(findFolded("xxABCab", "abC", 3), std::string_view::npos);
  EXPECT_EQ(findFolded("abc", "", 3), 3u);
  EXPECT_EQ(findFolded("abc", "", 4), std::string_view::npos);
}

TEST(Text, ReadsWholeNumbersOnly) {
  struct Case {
    const char* text;
    std::optional<std::int64_t> expected;
  };
  const Case cases[] = {{"0", 0},
                        {" 12\t", 12},
                        {"-7", -7},
                        {"+7", 7},
                        {"007", 7},
                        {"9223372036854775807", INT64_MAX},
                        {"-9223372036854775808", INT64_MIN},
                        {"9223372036854775808", {}},
                        {"", {}},
                        {" ", {}},
                        {"-", {}},
                        {"+", {}},
                        {"+-1", {}},
                        {"- 1", {}},
                        {"1 2", {}},
                        {"1x", {}},
                        {"1.0", {}},
                        {"0x10", {}}};
  for (const Case& c : cases)
    EXPECT_EQ(parseInteger(c.text), c.expected) << '"' << c.text << '"';
}

TEST(Text, SurvivesTheWayToUtf8AndBack) {
  EXPECT_EQ(toWindows1252(toUtf8(allBytes())), allBytes());
  EXPECT_EQ(toUtf8("\x80 \xF6"), "\xE2\x82\xAC \xC3\xB6");
}

TEST(Text, TakesWhatIsNoUtf8AsItIs) {
  for (const char* text : {"\xF6", "a\xC3", "\xC0\xAF", "\xED\xA0", "\xE2\x82", "\xF4\x90\x80\x80", "\x80"})
    EXPECT_EQ(toWindows1252(text), text);
  EXPECT_EQ(toWindows1252("\xE2\x82\xAC\xC4\x80!"), "\x80?!") << "a letter the code page lacks";
}

TEST(Text, StartsAValueAtItsColumn) {
  EXPECT_EQ(atColumn("IP:", 6, "1"), "IP:  1");
  EXPECT_EQ(atColumn("Label:", 7, "1"), "Label:1");
  EXPECT_EQ(atColumn("Long label:", 7, "1"), "Long label:1");
}

}  // namespace
}  // namespace quorvel
