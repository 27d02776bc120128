#include "app/settings.h"

#include <gtest/gtest.h>

#include <string>

#include "app/ini_document.h"
#include "app/program.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

class SettingsTest : public testing::Test {
 protected:
  void give(std::string_view text) { folder.write("quorvel.ini", text); }

  TempFolder folder;
  Settings settings{systemFiles(), folder.path()};
};

TEST(IniDocument, FindsValues) {
  const std::string text =
      "\xEF\xBB\xBF[MAIN]\r\n;Name=comment\r\njunk\r\n  name \t=  a b \r\nQuoted=\" x \"\r\nOdd=\"x'\r\nName=second\r\n"
      "Eq=a=b\r\nEmpty=\r\n=nokey\r\n[main]\r\nLate=1\r\n [ \xC5NGSTR\xD6M ] \r\nk=1\r\n[broken\r\nLast=end";
  const struct {
    std::string_view section, key, value;
  } cases[] = {
      {"Main", "NAME", "a b"}, {"MAIN", "quoted", " x "},      {"MAIN", "Odd", "\"x'"},
      {"MAIN", "Eq", "a=b"},   {"MAIN", "Empty", ""},          {"MAIN", "Late", "(none)"},
      {"MAIN", "", "nokey"},   {"\xE5ngstr\xF6m", "K", "1"},   {"\xC5ngstr\xD6m", "last", "end"},
      {"MAIN", "k", "(none)"}, {"MAIN", "Name=a b", "(none)"}, {"other", "Name", "(none)"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(findIniValue(text, c.section, c.key).value_or("(none)"), c.value) << c.section << " " << c.key;
  }
}

TEST(IniDocument, ChangesNothingButTheKey) {
  const struct {
    std::string_view before, after;
  } cases[] = {
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
  for (const auto& c : cases) {
    EXPECT_EQ(withIniValue(c.before, "S", "k", "v"), c.after) << c.before;
  }
}

TEST_F(SettingsTest, PreparingWritesAFreshFileAndDeletesTheOlderOne) {
  for (const std::string& text : {defaultSettingsText(), std::string("[MAIN]\r\nmine=1\r\n")}) {
    folder.write("quoran.ini", "[MAIN]\r\n");
    settings.prepareFile();
    EXPECT_EQ(folder.read("quorvel.ini"), text);
    EXPECT_FALSE(folder.has("quoran.ini"));
    give("[MAIN]\r\nmine=1\r\n");  // is kept
  }
}

TEST_F(SettingsTest, AFileOfAnotherVersionOrAnOverlongOneIsReplaced) {
  const std::string huge = "[MAIN]\r\nVersion=1.1.400\r\n" + std::string(kMaxSettingsFileSize, ';');
  give(huge);
  EXPECT_EQ(settings.ReadSetting("MAIN", "Version"), "");
  settings.WriteSetting("MAIN", "x", "1");
  EXPECT_EQ(folder.read("quorvel.ini"), huge);
  for (const std::string& other : {huge, std::string("[MAIN]\r\nVersion=1.1.4000\r\n"), std::string(),
                                   std::string("\xFF garbage"), std::string("Version=1.1.400\r\n")}) {
    give(other);
    settings.resetOtherVersion();
    EXPECT_EQ(folder.read("quorvel.ini"), defaultSettingsText()) << other.substr(0, 50);
  }
  give("[main]\nversion=1.1.400\nmine=1\n");
  settings.resetOtherVersion();
  EXPECT_EQ(settings.ReadSetting("MAIN", "mine"), "1");
}

TEST_F(SettingsTest, NumbersFallBackToTheFreshFile) {
  const struct {
    std::string stored;
    std::int32_t number;
    bool flag;
  } cases[] = {{"7", 7, true},          {"-3", -3, true},
               {"0", 0, false},         {"", 1, true},
               {"1x", 1, true},         {"2147483647", 2147483647, true},
               {"2147483648", 1, true}, {"99999999999999999999", 1, true},
               {"FALSE", 1, false}};
  for (const auto& c : cases) {
    give("[OPTION-SAVE]\r\nAppendWhenFilter=" + c.stored + "\r\n");
    EXPECT_EQ(settings.readNumber("option-save", "appendwhenfilter"), c.number) << c.stored;
    EXPECT_EQ(settings.readFlag("OPTION-SAVE", "AppendWhenFilter"), c.flag) << c.stored;
  }
  EXPECT_EQ(settings.readNumber("OPTION-FIND-USER", "FindUserBuffer"), 4000);
  EXPECT_EQ(settings.readNumber("POSITION", "MainTop"), 0);
}

TEST_F(SettingsTest, AValueStaysOneLineOfWhichAtMost79CharactersAreRead) {
  settings.WriteSetting("S", "k", "a\r\n[T]\nx=1\x1B\x7F");
  EXPECT_EQ(folder.read("quorvel.ini"), "[S]\r\nk=a[T]x=1\r\n");
  settings.WriteSetting("S", "k", std::string(100, 'x'));
  EXPECT_EQ(settings.ReadSetting("s", "K"), std::string(79, 'x'));
}

}  // namespace
}  // namespace quorvel::test
