#include "core/text.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

// Case, and the way to UTF-8 and back, are compared in the fuzz target of texts.
TEST(Text, ReadsWholeNumbersOnly) {
  const std::pair<const char*, std::int64_t> numbers[] = {
      {" 12\t", 12}, {"+7", 7}, {"007", 7}, {"9223372036854775807", INT64_MAX}, {"-9223372036854775808", INT64_MIN}};
  for (const auto& [text, value] : numbers)
    EXPECT_EQ(parseInteger(text), value) << text;
  for (const char* text : {"9223372036854775808", "", " ", "-", "+", "+-1", "- 1", "1 2", "1x", "1.0", "0x10"})
    EXPECT_FALSE(parseInteger(text)) << '"' << text << '"';
}

TEST(Text, IsUtf8OnlyWhereAllOfItIs) {
  EXPECT_EQ(toUtf8("\x80 \x99 \xF6"), "\xE2\x82\xAC \xE2\x84\xA2 \xC3\xB6");
  for (const char* text : {"\xF6", "a\xC3", "\xC3\xC3", "\xC0\xAF", "\xED\xA0", "\xE2\x82", "\xF4\x90\x80\x80", "\x80"})
    EXPECT_EQ(toWindows1252(text), text) << "no UTF-8, taken as it is";
  EXPECT_EQ(toWindows1252("\xE2\x82\xAC\xC4\x80!"), "\x80?!") << "a letter the code page lacks";
}

}  // namespace
}  // namespace quorvel
