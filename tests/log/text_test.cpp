#include "log/text.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

// Case, numbers, and the way to UTF-8 and back are compared in the fuzz target of texts.
TEST(Text, IsUtf8OnlyWhereAllOfItIs) {
  EXPECT_EQ(toUtf8("\x80 \x99 \xF6"), "\xE2\x82\xAC \xE2\x84\xA2 \xC3\xB6");
  for (const char* text : {"\xF6", "a\xC3", "\xC3\xC3", "\xC0\xAF", "\xED\xA0", "\xE2\x82", "\xF4\x90\x80\x80", "\x80"})
    EXPECT_EQ(toWindows1252(text), text) << "no UTF-8, taken as it is";
  EXPECT_EQ(toWindows1252("\xE2\x82\xAC\xC4\x80!"), "\x80?!") << "a letter the code page lacks";
}

}  // namespace
}  // namespace quorvel
