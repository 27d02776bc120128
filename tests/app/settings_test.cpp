#include "app/settings.h"

#include <gtest/gtest.h>

#include <string>

#include "app/ini_document.h"
#include "app/program.h"
#include "tests/support/failing_files.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

class SettingsTest : public testing::Test {
 protected:
  void give(std::string_view text) { folder.write("quorvel.ini", text); }
  [[nodiscard]] std::string text() const { return folder.read("quorvel.ini"); }
  [[nodiscard]] std::ptrdiff_t fileCount() const {
    return std::distance(std::filesystem::directory_iterator(folder.path()), {});
  }

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

TEST_F(SettingsTest, PreparingWritesAFreshFileDeletesTheOlderOneAndKeepsOurs) {
  settings.prepareFile();
  const std::string fresh = text();
  EXPECT_TRUE(fresh.starts_with("[MAIN]\r\nVersion=1.1.400\r\nLastOpenPath=\r\n")) << fresh;
  EXPECT_TRUE(fresh.ends_with("\r\n\r\n[COMMAND-LINE-ARGUMENTS]\r\nMaxArguments=50\r\nAutoExit=1\r\n\r\n")) << fresh;
  EXPECT_EQ(std::count(fresh.begin(), fresh.end(), '\n'), 57);
  EXPECT_EQ(std::count(fresh.begin(), fresh.end(), '='), 37);
  folder.write("quoran.ini", "[MAIN]\r\n");
  give("[MAIN]\r\nmine=1\r\n");
  settings.prepareFile();
  EXPECT_EQ(text(), "[MAIN]\r\nmine=1\r\n");
  EXPECT_EQ(fileCount(), 1);
}

TEST_F(SettingsTest, AFileOfAnotherVersionIsReplaced) {
  const std::string fresh = defaultSettingsText();
  for (const std::string other :
       {"[MAIN]\r\nVersion=1.0.300\r\n", "[MAIN]\r\nVersion=1.1.4000\r\n", "", "\xFF garbage", "Version=1.1.400\r\n"}) {
    give(other);
    settings.resetOtherVersion();
    EXPECT_EQ(text(), fresh) << other;
  }
  const std::string kept = "[main]\nversion=1.1.400\nmine=1\n";
  give(kept);
  settings.resetOtherVersion();
  EXPECT_EQ(text(), kept);
}

TEST_F(SettingsTest, NumbersFallBackToTheFreshFile) {
  struct Case {
    std::string_view stored;
    std::int32_t number;
    bool flag;
  };
  for (const Case& c : {Case{"7", 7, true},
                        {"-3", -3, true},
                        {"0", 0, false},
                        {"", 1, true},
                        {"abc", 1, true},
                        {"1x", 1, true},
                        {"2147483648", 1, true},
                        {"2147483647", 2147483647, true},
                        {"99999999999999999999", 1, true},
                        {"FALSE", 1, false}}) {
    give("[OPTION-SAVE]\r\nAppendWhenFilter=" + std::string(c.stored) + "\r\n");
    EXPECT_EQ(settings.readNumber("option-save", "appendwhenfilter"), c.number) << c.stored;
    EXPECT_EQ(settings.readFlag("OPTION-SAVE", "AppendWhenFilter"), c.flag) << c.stored;
  }
  EXPECT_EQ(settings.readNumber("OPTION-FIND-USER", "FindUserBuffer"), 4000);
  EXPECT_EQ(settings.readNumber("POSITION", "MainTop"), 0);
  EXPECT_FALSE(settings.readFlag("MAIN", "Maximized"));
}

TEST_F(SettingsTest, OnlyTheOneSpellingMovesTheRecentFiles) {
  const std::string before =
      "[MAIN]\r\nLastOpenFile01=A\r\nLastOpenFile02=B\r\nLastOpenFile03=C\r\nLastOpenFile04=D\r\nLastOpenFile05=E\r\n";
  give(before);
  settings.WriteSetting("Main", "LastOpenFile01", "c:\\a.log");
  EXPECT_EQ(text(),
            "[MAIN]\r\nLastOpenFile01=c:\\a.log\r\nLastOpenFile02=A\r\nLastOpenFile03=B\r\nLastOpenFile04=C\r\n"
            "LastOpenFile05=D\r\n");
  give(before);
  settings.WriteSetting("MAIN", "LastOpenFile01", "x");
  settings.WriteSetting("Main", "LASTOPENFILE02", "y");
  EXPECT_EQ(text().substr(0, 46), "[MAIN]\r\nLastOpenFile01=x\r\nLastOpenFile02=y\r\nLa");
}

TEST_F(SettingsTest, AValueStaysOneLineOfWhichAtMost79CharactersAreRead) {
  settings.WriteSetting("S", "k", "a\r\n[T]\nx=1\x1B\x7F");
  EXPECT_EQ(text(), "[S]\r\nk=a[T]x=1\r\n");
  settings.WriteSetting("S", "k", std::string(100, 'x'));
  EXPECT_EQ(settings.ReadSetting("s", "K"), std::string(79, 'x'));
  EXPECT_EQ(settings.ReadSetting("S", "missing"), "");
}

TEST_F(SettingsTest, AnOverlongFileIsNeitherReadNorChangedButReplacedAtStart) {
  const std::string huge = "[MAIN]\r\nVersion=1.1.400\r\n" + std::string(kMaxSettingsFileSize, ';');
  give(huge);
  EXPECT_EQ(settings.ReadSetting("MAIN", "Version"), "");
  settings.WriteSetting("MAIN", "x", "1");
  EXPECT_EQ(text(), huge);
  settings.resetOtherVersion();
  EXPECT_EQ(text(), defaultSettingsText());
}

TEST_F(SettingsTest, AnyFailureLeavesTheOldFileAndNothingElse) {
  const std::string before = "[MAIN]\r\nVersion=1.0\r\nk=old\r\n";
  int tried = 0;
  for (bool failed = true; failed; ++tried) {
    give(before);
    FailingFiles files(tried + 1);
    Settings(files, folder.path()).WriteSetting("MAIN", "k", "new");
    failed = files.hasFailed();
    const bool isOld = text() == before;
    const bool isNew = text() == "[MAIN]\r\nVersion=1.0\r\nk=new\r\n";
    EXPECT_TRUE(failed ? isOld || isNew : isNew) << "operation " << tried + 1 << ": " << text();
    EXPECT_EQ(fileCount(), 1) << "operation " << tried + 1;
  }
  EXPECT_GE(tried, 6);
  give(before);
  FailingFiles unreadable(2);  // the first question about the file succeeds, opening it does not
  Settings(unreadable, folder.path()).resetOtherVersion();
  EXPECT_EQ(text(), before);
}

}  // namespace
}  // namespace quorvel::test
