#include "app/settings.h"

#include <gtest/gtest.h>

#include <array>
#include <tuple>

#include "app/ini_document.h"
#include "tests/support/memory_files.h"

namespace quorvel::test {
namespace {

TEST(IniDocument, FindsValues) {
  const std::string text =
      "\xEF\xBB\xBF[MAIN]\r\n;Name=comment\r\njunk\r\n  name \t=  a b \r\nQuoted=\" x \"\r\nOdd=\"x'\r\nName=second\r\n"
      "Eq=a=b\r\nEmpty=\r\n=nokey\r\n[main]\r\nLate=1\r\n [ \xC5NGSTR\xD6M ] \r\nk=1\r\n[broken\r\nLast=end";
  const std::array<std::string_view, 3> cases[] = {
      {"Main", "NAME", "a b"}, {"MAIN", "quoted", " x "},      {"MAIN", "Odd", "\"x'"},
      {"MAIN", "Eq", "a=b"},   {"MAIN", "Empty", ""},          {"MAIN", "Late", "(none)"},
      {"MAIN", "", "nokey"},   {"\xE5ngstr\xF6m", "K", "1"},   {"\xC5ngstr\xD6m", "last", "end"},
      {"MAIN", "k", "(none)"}, {"MAIN", "Name=a b", "(none)"}, {"other", "Name", "(none)"},
  };
  for (const auto& [section, key, value] : cases)
    EXPECT_EQ(findIniValue(text, section, key).value_or("(none)"), value) << section << " " << key;
}

TEST(IniDocument, ChangesNothingButTheKey) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"", "[S]\r\nk=v\r\n"},
      {"; only", "; only\r\n[S]\r\nk=v\r\n"},
      {"[T]\nx=1\n", "[T]\nx=1\n[S]\nk=v\n"},
      {"[T]\r\n\r\n[s]\r\nK = old \r\nk=two\r\n", "[T]\r\n\r\n[s]\r\nK=v\r\nk=two\r\n"},
      {"[S]\na=1\n;c\n\n[T]\nk=1\n", "[S]\na=1\n;c\nk=v\n\n[T]\nk=1\n"},
      {"[S]\r\n\r\n", "[S]\r\nk=v\r\n\r\n"},
      {"[S]\r\na=1", "[S]\r\na=1\r\nk=v\r\n"},
      {"[S]", "[S]\r\nk=v\r\n"},
      {"[S]\r\nk=old", "[S]\r\nk=v"},
      {"\xEF\xBB\xBF[S]\nk=\"q\"\n\x01x", "\xEF\xBB\xBF[S]\nk=v\n\x01x"},
  };
  for (const auto& [before, after] : cases)
    EXPECT_EQ(withIniValue(before, "S", "k", "v"), after) << before;
}

class SettingsTest : public testing::Test {
 protected:
  MemoryFiles files;
  Settings settings{files, ""};
};

TEST_F(SettingsTest, AnOverlongFileIsNotReadAndReplacedAtTheNextStart) {
  const std::string huge = "[MAIN]\r\nVersion=1.1.400\r\n" + std::string(kMaxSettingsFileSize, ';');
  files.put("quorvel.ini", huge);
  EXPECT_EQ(settings.ReadSetting("MAIN", "Version"), "");
  settings.WriteSetting("MAIN", "x", "1");
  EXPECT_EQ(files.content("quorvel.ini"), huge);
  settings.resetOtherVersion();
  EXPECT_EQ(files.content("quorvel.ini"), defaultSettingsText());
}

TEST_F(SettingsTest, NumbersFallBackToTheFreshFile) {
  const std::tuple<std::string, std::int32_t, bool> cases[] = {
      {"7", 7, true},          {"-3", -3, true},
      {"0", 0, false},         {"", 1, true},
      {"1x", 1, true},         {"2147483647", 2147483647, true},
      {"2147483648", 1, true}, {"99999999999999999999", 1, true},
      {"FALSE", 1, false},     {"-2147483649", 1, true}};
  for (const auto& [stored, number, flag] : cases) {
    files.put("quorvel.ini", "[OPTION-SAVE]\r\nAppendWhenFilter=" + stored + "\r\n");
    EXPECT_EQ(settings.readNumber("option-save", "appendwhenfilter"), number) << stored;
    EXPECT_EQ(settings.readFlag("OPTION-SAVE", "AppendWhenFilter"), flag) << stored;
  }
  EXPECT_EQ(settings.readNumber("OPTION-FIND-USER", "FindUserBuffer"), 4000);
  EXPECT_EQ(settings.readNumber("POSITION", "MainTop"), 0);
}

TEST_F(SettingsTest, AValueStaysOneLineOfWhichAtMost79CharactersAreRead) {
  settings.WriteSetting("S", "k", "a\r\n[T]\nx=1\x1B\x7F");
  EXPECT_EQ(files.content("quorvel.ini"), "[S]\r\nk=a[T]x=1\r\n");
  settings.WriteSetting("S", "k", std::string(100, 'x'));
  EXPECT_EQ(settings.ReadSetting("s", "K"), std::string(79, 'x'));
}

}  // namespace
}  // namespace quorvel::test
