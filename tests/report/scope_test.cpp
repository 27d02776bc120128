#include "report/scope.h"

#include <gtest/gtest.h>

#include "tests/support/activity_maker.h"

namespace quorvel::test {
namespace {

using Field = ScopeWord::Field;

TEST(ScopeWords, AreReadAndWrittenAlike) {
  std::vector<ScopeWord> words;
  constexpr std::string_view kText =
      " user:alice ip:10.0. -word \"two words\"\tpath:\"c:\\a b\" -outcome:ok \"say \"\"hi\"\"\" a.b:c ";
  EXPECT_FALSE(parseWords(kText, words));
  const std::vector<ScopeWord> expected = {{Field::User, "alice", false},     {Field::Address, "10.0.", false},
                                           {Field::Any, "word", true},        {Field::Any, "two words", false},
                                           {Field::Path, "c:\\a b", false},   {Field::Outcome, "ok", true},
                                           {Field::Any, "say \"hi\"", false}, {Field::Any, "a.b:c", false}};
  EXPECT_EQ(words, expected);
  std::vector<ScopeWord> again;
  EXPECT_FALSE(parseWords(wordsText(words), again));
  EXPECT_EQ(again, expected);
}

TEST(ScopeWords, MistakesAreToldWithTheirPlace) {
  struct Mistake {
    std::string_view text;
    std::size_t begin;
    std::size_t end;
  };
  for (const Mistake& mistake : {Mistake{"a name:b", 2, 7},
                                 {"user:", 0, 5},
                                 {"a -", 2, 3},
                                 {"a \"b", 2, 4},
                                 {"x -foo:y", 3, 7},
                                 {"user:\"\"", 0, 7}}) {
    std::vector<ScopeWord> words = {{Field::User, "kept", false}};
    const auto found = parseWords(mistake.text, words);
    ASSERT_TRUE(found) << mistake.text;
    EXPECT_EQ(found->begin, mistake.begin) << mistake.text;
    EXPECT_EQ(found->end, mistake.end) << mistake.text;
    EXPECT_EQ(words.size(), 1u);
  }
}

TEST(ScopePeriod, IsReadAgainstNow) {
  constexpr LogTime kNow = ActivityMaker::kStart + 191;  // 2005-06-06T08:03:11
  struct When {
    std::string_view text;
    std::string_view begin;
    std::string_view end;
  };
  for (const When& when : {When{"2005-06-05", "2005-06-05T00:00:00", "2005-06-06T00:00:00"},
                           {"2004-02-29T23:59:59", "2004-02-29T23:59:59", "2004-02-29T23:59:59"},
                           {"2005-06-05 08:30", "2005-06-05T08:30:00", "2005-06-05T08:30:00"},
                           {"today", "2005-06-06T00:00:00", "2005-06-07T00:00:00"},
                           {"yesterday", "2005-06-05T00:00:00", "2005-06-06T00:00:00"},
                           {"-7d", "2005-05-30T08:03:11", "2005-05-30T08:03:11"},
                           {"-90m", "2005-06-06T06:33:11", "2005-06-06T06:33:11"},
                           {"-2w", "2005-05-23T08:03:11", "2005-05-23T08:03:11"},
                           {"now", "2005-06-06T08:03:11", "2005-06-06T08:03:11"}}) {
    EXPECT_EQ(timeText(parseWhen(when.text, kNow, false).value_or(kNoTime)), when.begin) << when.text;
    EXPECT_EQ(timeText(parseWhen(when.text, kNow, true).value_or(kNoTime)), when.end) << when.text;
  }
  for (const std::string_view wrong : {"", "-", "-d", "-7", "-7y", "--7d", "7d", "2005", "2005-02-29", "2005-13-01",
                                       "2005-06-06T24:00", "2005-06-06T08:00:60", "2005-06-06x08:00", "2005-06-06T",
                                       "1969-01-01", "9999-01-01", "-99999999999d", "-4000000000w", "+2005-06-06"})
    EXPECT_FALSE(parseWhen(wrong, kNow, false)) << wrong;
}

/// Two days, three users: what each scope chooses, as numbers of sessions / log-ons / actions.
class Choosing : public testing::Test {
 protected:
  static constexpr LogTime kDay = 86400;

  Choosing() {
    maker.session("alice", "10.0.0.5", 0, 100).logon(1, true).action(5, FileAction::Upload, "/in/Report.doc", 10);
    maker.action(6, FileAction::Delete, "old.txt", -1, Outcome::Failed, "", "/archive");
    maker.session("Bob", "10.0.1.6", 50, kDay + 50)
        .logon(51, false)
        .logon(52, true)
        .action(60, FileAction::Rename, "/x", -1, Outcome::Ok, "/report2");
    maker.session("\xC3\x85ke", "2001:db8::1", kDay, kDay + 10);
    maker.lastRow().outcome = LogonResult::RefusedAddress;
  }

  std::string chosen(std::string_view words, std::optional<LogTime> from = {}, std::optional<LogTime> to = {}) {
    Scope scope;
    EXPECT_FALSE(parseWords(words, scope.words));
    if (from) scope.from = ActivityMaker::kStart + *from;
    if (to) scope.to = ActivityMaker::kStart + *to;
    const Selection selection = select(maker.activity(), scope);
    std::string text;
    for (const auto* const rows : {&selection.sessions, &selection.logons, &selection.actions}) {
      for (const RowNumber row : *rows)
        text += std::to_string(row);
      text += '/';
    }
    text.pop_back();
    return text;
  }

  ActivityMaker maker;
};

TEST_F(Choosing, ByWords) {
  struct Choice {
    std::string_view words;
    std::string_view rows;
  };
  for (const Choice& choice : {
           Choice{"", "012/012/012"},
           {"user:ALICE", "0/0/01"},
           {"user:alice user:bob", "01/012/012"},
           {"user:alice ip:10.0.1", "//"},
           {"ip:10.0.", "01/012/012"},
           {"-ip:10.0.0.", "12/12/2"},
           {"-ip:10.0.0. -ip:2001", "1/12/2"},
           {"path:report", "01//02"},
           {"path:REPORT user:bob", "1//2"},
           {"path:archive", "0//1"},
           {"path:in/", "0//0"},
           {"-path:report", "2/012/1"},
           {"report", "01//02"},
           {"report alice", "0//0"},
           {"-report", "2/012/1"},
           {"b", "12/12/2"},
           {"user:\xC3\xA5", "2//"},
           {"outcome:failed", "/1/1"},
           {"outcome:refused", "2//"},
           {"outcome:ok -path:report", "/02/"},
           {"nobody", "//"},
       })
    EXPECT_EQ(chosen(choice.words), choice.rows) << choice.words;
}

TEST_F(Choosing, ByPeriod) {
  EXPECT_EQ(chosen("", 50), "012/12/2");
  EXPECT_EQ(chosen("", 100), "012//");
  EXPECT_EQ(chosen("", 101), "12//");
  EXPECT_EQ(chosen("", {}, 50), "0/0/01");
  EXPECT_EQ(chosen("", 6, 52), "01/1/1");
  EXPECT_EQ(chosen("user:bob", kDay), "1//");
  maker.lastRow().first = maker.lastRow().ended = kNoTime;
  EXPECT_EQ(chosen("", kDay), "1//");
}

TEST_F(Choosing, LettersAreFoldedInEveryAlphabetAndEncoding) {
  ActivityMaker old(TextEncoding::Windows1252);
  old.session("\xC5KE", "a")
      .session(
          "STRA\xDF"
          "E",
          "b")
      .session("\x8A", "c");
  maker = old;
  EXPECT_EQ(chosen("user:\xC3\xA5ke"), "0//");
  EXPECT_EQ(chosen("user:\xC3\x9F"), "1//");
  EXPECT_EQ(chosen("user:\xC5\xA1"), "2//");
  ActivityMaker greek;
  greek.session("\xCE\x91\xCE\xA9", "a").session("\xD0\x98\xD0\xB2\xD0\xB0\xD0\xBD", "b");
  maker = greek;
  EXPECT_EQ(chosen("\xCE\xB1\xCF\x89"), "0//");
  EXPECT_EQ(chosen("\xD0\xB8\xD0\x92"), "1//");
}

}  // namespace
}  // namespace quorvel::test
