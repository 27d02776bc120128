// What each question answers, on small tables made by hand.
#include <gtest/gtest.h>

#include <algorithm>

#include "grammar/all_grammars.h"
#include "report/check.h"
#include "report/files.h"
#include "report/logins.h"
#include "report/look_at_first.h"
#include "report/overview.h"
#include "report/paths.h"
#include "report/raw_tables.h"
#include "report/traffic.h"
#include "report/transfers.h"
#include "tests/support/activity_maker.h"

namespace quorvel::test {
namespace {

Selection everything(const Activity& activity) {
  return select(activity, {});
}

TEST(Logins, EachAddressWithItsWorstTimes) {
  ActivityMaker maker;
  maker.session("x", "guesser");
  for (LogTime i = 0; i < 5; ++i)
    maker.logon(i * 149, false,
                "name" + std::to_string(i));  // five within ten minutes, one second less and they were four
  maker.session("bob", "typist").logon(0, false).logon(9, true).logon(20, false).logon(30, false).logon(40, true);
  maker.session("admin", "thief")
      .logon(0, false, "root")
      .logon(1000, false)
      .logon(2000, false)
      .logon(3000, true)
      .logon(3100, false);
  maker.session("eve", "patient");
  for (LogTime i = 0; i < 5; ++i)
    maker.logon(i * 150, false);
  const Activity activity = maker.activity();
  const auto table = loginsTable(activity, everything(activity).logons, LoginsBy::Address, {});
  EXPECT_EQ(tableText(*table, {"address", "stands_out", "failures", "names", "names_tried", "most_in_10m", "most_in_2m",
                               "got_in_after", "got_in_as", "attempts"}),
            "thief got in 4 2 root, admin 1 1 3 admin 5\n"
            "guesser guessing 5 5 name0, name1, name2, +2 5 1 0 - 5\n"
            "patient - 5 1 eve 4 1 0 - 5\n"
            "typist - 3 1 bob 3 3 2 bob 5\n");
  EXPECT_EQ(tableText(*table, {"address", "first", "last"}).substr(0, 46),
            "thief 2005-06-06T08:00:00 2005-06-06T08:51:40\n");
}

TEST(Logins, ThresholdsAreSettableAndZeroTurnsThemOff) {
  ActivityMaker maker;
  maker.session("x", "a").logon(0, false).logon(119, false).logon(120, false).logon(121, true);
  const Activity activity = maker.activity();
  const auto rank = [&activity](Thresholds thresholds) {
    return static_cast<int>(logins(activity, allRows(4), LoginsBy::User, thresholds).front().rank);
  };
  EXPECT_EQ(rank({0, 0, 0}), 0);
  EXPECT_EQ(rank({3, 0, 0}), 1);
  EXPECT_EQ(rank({4, 0, 0}), 0);
  EXPECT_EQ(rank({0, 2, 0}), 1);
  EXPECT_EQ(rank({0, 3, 0}), 0);
  EXPECT_EQ(rank({0, 0, 3}), 2);
  EXPECT_EQ(rank({0, 0, 4}), 0);
}

TEST(Logins, SeveralLogsOfTheSameDaysArePutInOrderOfTime) {
  ActivityMaker maker;
  maker.session("x", "a").logon(700, true).logon(0, false).logon(1, false).logon(2, false);
  const Activity activity = maker.activity();
  const auto rows = logins(activity, allRows(4), LoginsBy::Address, {});
  EXPECT_EQ(rows.front().gotInAfter, 3u);
  EXPECT_EQ(activity.logons[rows.front().attempt].time, ActivityMaker::kStart + 700);
}

class Files : public testing::Test {
 protected:
  std::string history(std::string_view words) {
    Scope scope;
    EXPECT_FALSE(parseWords(words, scope.words));
    const Activity activity = maker.activity();
    return tableText(*actionsTable(activity, fileActions(activity, scope)), {"action", "path", "to_path"});
  }
  ActivityMaker maker;
};

TEST_F(Files, AreFollowedThroughTheirRenames) {
  maker.session("alice", "a").action(1, FileAction::Upload, "draft.doc", 10, Outcome::Ok, "", "/in");
  maker.action(2, FileAction::Rename, "/in/draft.doc", -1, Outcome::Ok, "/in/final.doc");
  maker.action(3, FileAction::Upload, "/in/draft.doc", 20);  // another file
  maker.action(4, FileAction::Rename, "final.doc", -1, Outcome::Ok, "../out/report.doc", "/in");
  maker.action(5, FileAction::Rename, "/in/final.doc", -1, Outcome::Failed, "/in/lost.doc");
  maker.session("bob", "b")
      .action(6, FileAction::Download, "/in/final.doc", 1)
      .action(7, FileAction::Delete, "/in/final.doc");
  EXPECT_EQ(history("path:final"),
            "upload draft.doc -\nrename /in/draft.doc /in/final.doc\nrename final.doc ../out/report.doc\n"
            "rename /in/final.doc /in/lost.doc\ndownload /in/final.doc -\ndelete /in/final.doc -\n");
  EXPECT_EQ(history("path:final user:bob"), "download /in/final.doc -\ndelete /in/final.doc -\n");
  EXPECT_EQ(history("final"),
            "rename /in/draft.doc /in/final.doc\nrename final.doc ../out/report.doc\n"
            "rename /in/final.doc /in/lost.doc\ndownload /in/final.doc -\ndelete /in/final.doc -\n");
}

TEST_F(Files, AreFollowedForwardAndNoFurtherThanTheyGo) {
  maker.session("alice", "a").action(1, FileAction::Delete, "/a").action(2, FileAction::Upload, "/secret", 1);
  maker.action(3, FileAction::Rename, "/secret", -1, Outcome::Ok, "/a").action(4, FileAction::Download, "/a", 1);
  maker.action(5, FileAction::Rename, "/a", -1, Outcome::Ok, "/b").action(6, FileAction::Download, "/a", 1);
  maker.action(7, FileAction::Download, "/b", 1)
      .action(8, FileAction::Delete, "/b")
      .action(9, FileAction::Upload, "/b", 1);
  EXPECT_EQ(history("path:secret"),
            "upload /secret -\nrename /secret /a\ndownload /a -\nrename /a /b\ndownload /b -\ndelete /b -\n");
}

TEST_F(Files, FoldersAreSummed) {
  maker.session("alice", "a")
      .action(1, FileAction::Upload, "/in/a", 10)
      .action(2, FileAction::Download, "b", 5, Outcome::Ok, "", "/in");
  maker.action(3, FileAction::Download, "sub\\c", -1, Outcome::Ok, "", "/in")
      .action(4, FileAction::Upload, "/in/d", 99, Outcome::Failed);
  maker.action(5, FileAction::Delete, "C:\\ftp\\x")
      .action(6, FileAction::Delete, "/y")
      .action(7, FileAction::Delete, "z");
  const Activity activity = maker.activity();
  EXPECT_EQ(
      tableText(*foldersTable(activity, everything(activity).actions),
                {"folder", "actions", "downloads", "download_bytes", "uploads", "upload_bytes", "failed", "deletes"}),
      "/in 3 1 5 1 10 1 0\n- 1 0 0 0 0 0 1\n/in/sub 1 1 0 0 0 0 0\nC:\\ftp 1 0 0 0 0 0 1\n/ 1 0 0 0 0 0 1\n");
}

TEST(Paths, OneFileUnderTwoRoots) {
  struct Pair {
    std::string_view a;
    std::string_view b;
    bool isSame;
  };
  for (const Pair& pair : {Pair{"/pub/x.iso", "C:/ftp/pub/x.iso", true},
                           {"x.iso", "/pub/x.iso", true},
                           {"/a/index.html", "/b/index.html", false},
                           {"/b/index.html", "/ab/index.html", false},
                           {"/x", "/x", true},
                           {"/x", "", false}})
    EXPECT_EQ(isSamePath(fullPath("", pair.a), fullPath("", pair.b)), pair.isSame) << pair.a << ' ' << pair.b;
  EXPECT_EQ(fullPath("\\in\\", "sub//a"), "/in/sub/a");
  EXPECT_EQ(fullPath("/in", "C:\\b"), "C:/b");
}

TEST(Transfers, BrokenOnesAndWhatBecameOfThem) {
  constexpr auto kFailed = Outcome::Failed;
  ActivityMaker maker;
  maker.session("alice", "a").action(1, FileAction::Download, "x.iso", -1, kFailed, "", "/pub");
  maker.action(2, FileAction::Download, "/pub/x.iso", 7, kFailed).action(3, FileAction::Upload, "x.iso", 7);
  maker.action(4, FileAction::Download, "/other/x.iso", 7).action(9, FileAction::Download, "C:\\ftp\\pub\\x.iso", 1000);
  maker.lastAction().seconds = 4;
  maker.session("bob", "b")
      .action(10, FileAction::Download, "/pub/x.iso", -1, kFailed)
      .action(11, FileAction::Upload, "up", -1, Outcome::Unknown);
  const Activity activity = maker.activity();
  const auto actions = everything(activity).actions;
  EXPECT_EQ(tableText(*transfersTable(activity, actions, TransferChoice::Broken),
                      {"user", "path", "cause", "tried_again", "finished", "finished_at"}),
            "alice x.iso reply 2 true 2005-06-06T08:00:09\nalice /pub/x.iso reply 1 true 2005-06-06T08:00:09\n"
            "bob /pub/x.iso reply 0 false -\n");
  EXPECT_EQ(tableText(*transfersTable(activity, actions, TransferChoice::All), {"bytes", "speed"}),
            "- -\n7 -\n7 -\n7 -\n1000 250\n- -\n- -\n");
  // a later attempt counts although the scope leaves it out
  EXPECT_EQ(tableText(*transfersTable(activity, {0}, TransferChoice::Broken), {"finished"}), "true\n");
}

class Traffic : public testing::Test {
 protected:
  static constexpr LogTime kDay = 86400;
  Traffic() {
    maker.session("alice", "a")
        .action(0, FileAction::Upload, "/in/a", 10)
        .action(kDay, FileAction::Download, "/out/b", 5);
    maker.session("bob", "b")
        .action(3600, FileAction::Download, "/out/b", 100)
        .action(30 * kDay, FileAction::Download, "c", -1);
    maker.action(1, FileAction::Upload, "/in/failed", 7, Outcome::Failed).action(1, FileAction::Delete, "/in/a");
  }
  std::string sums(std::vector<TrafficKey> by, const std::vector<std::string_view>& columns) {
    const Activity activity = maker.activity();
    return tableText(*trafficTable(activity, everything(activity).actions, by), columns);
  }
  ActivityMaker maker;
};

TEST_F(Traffic, IsSummedByOneKeyOrTwo) {
  EXPECT_EQ(
      sums({TrafficKey::User}, {"user", "files", "bytes", "downloads", "download_bytes", "uploads", "upload_bytes"}),
      "bob 2 100 2 100 0 0\nalice 2 15 1 5 1 10\ntotal 4 115 3 105 1 10\n");
  EXPECT_EQ(sums({TrafficKey::Day, TrafficKey::User}, {"day", "user", "bytes"}),
            "2005-06-06 bob 100\n2005-06-06 alice 10\n2005-06-07 alice 5\n2005-07-06 bob 0\ntotal - 115\n");
  EXPECT_EQ(sums({TrafficKey::User, TrafficKey::Day}, {"user", "day", "bytes"}),
            "bob 2005-06-06 100\nbob 2005-07-06 0\nalice 2005-06-06 10\nalice 2005-06-07 5\ntotal - 115\n");
  EXPECT_EQ(sums({TrafficKey::Weekday}, {"weekday", "bytes"}), "Mon 110\nTue 5\nWed 0\ntotal 115\n");
  EXPECT_EQ(sums({TrafficKey::Hour}, {"hour", "bytes"}), "08 15\n09 100\ntotal 115\n");
  EXPECT_EQ(sums({TrafficKey::Month}, {"month", "files"}), "2005-06 3\n2005-07 1\ntotal 4\n");
  EXPECT_EQ(sums({TrafficKey::Folder}, {"folder", "bytes"}), "/out 105\n/in 10\n- 0\ntotal 115\n");
  EXPECT_EQ(sums({TrafficKey::Address}, {"address", "bytes"}), "b 100\na 15\ntotal 115\n");
}

TEST_F(Traffic, TotalsStayLastAndWeekdaysInOrder) {
  const Activity activity = maker.activity();
  const auto table = trafficTable(activity, everything(activity).actions, std::array{TrafficKey::Weekday});
  EXPECT_EQ(sortedRows(*table, 2, false), (std::vector<RowNumber>{2, 1, 0, 3}));
  EXPECT_EQ(sortedRows(*table, 0, true), (std::vector<RowNumber>{2, 1, 0, 3}));
}

TEST(LookAtFirst, WorstFirstAndSevenAtMost) {
  ActivityMaker maker;
  for (const std::string_view address : {"t1", "t2", "t3"})
    maker.session("admin", address).logon(0, false).logon(1, false).logon(2, false).logon(3, true);
  for (const std::string_view address : {"g1", "g2"}) {
    maker.session("x", address);
    for (LogTime i = 0; i < 6; ++i)
      maker.logon(i, false, "n" + std::to_string(i));
  }
  maker.session("alice", "a\x1B[2J");
  for (LogTime i = 0; i < 20; ++i)
    maker.action(i * 31, FileAction::Delete, "/f" + std::to_string(i));  // twenty within 589 seconds
  maker.action(0, FileAction::Upload, "/up", -1, Outcome::Failed);
  maker.log().ledger.setAside = {3, 30};
  maker.log().ledger.shapes.resize(2);
  const Activity activity = maker.activity();
  std::string sentences;
  for (const Finding& finding : lookAtFirst(activity, everything(activity), {}))
    sentences += (finding.isUrgent ? "! " : ". ") + finding.sentence + " [" + wordsText(finding.words) + "]\n";
  EXPECT_EQ(sentences,
            "! t1 got in as admin after 3 refusals [ip:t1]\n! 2 more addresses got in after refusals []\n"
            "! g1 was refused 6 times, trying 6 names [ip:g1]\n! g2 was refused 6 times, trying 6 names [ip:g2]\n"
            "! alice deleted 20 files within ten minutes [user:alice]\n! 1 transfer never finished []\n"
            ". 2 shapes of lines set aside, 3 lines []\n");
}

TEST(Overview, CountsWhatTheScopeChooses) {
  ActivityMaker maker;
  maker.session("alice", "a").logon(0, false).logon(1, true).action(2, FileAction::Download, "/x", 10);
  maker.session("bob", "a")
      .action(3, FileAction::Upload, "/y", 20)
      .action(4, FileAction::Upload, "/z", -1, Outcome::Failed);
  maker.session("", "b");
  maker.log().ledger.understood = {99, 990};
  maker.log().ledger.setAside = {1, 10};
  const Activity activity = maker.activity();
  const Overview all = overview(activity, everything(activity), {});
  EXPECT_EQ(tableText(*all.summary, {"lines", "understood", "sessions", "users", "addresses", "logons", "failed_logons",
                                     "downloads", "download_bytes", "uploads", "upload_bytes", "failed_transfers"}),
            "100 99.00 3 2 2 1 1 1 10 1 20 1\n");
  EXPECT_EQ(tableText(*all.topUsers, {"user", "bytes"}), "bob 20\nalice 10\n");
  EXPECT_EQ(tableText(*all.topAddresses, {"address", "failures"}), "a 1\n");
  EXPECT_EQ(tableText(*all.week, {"weekday", "08"}), "Mon 30\nTue 0\nWed 0\nThu 0\nFri 0\nSat 0\nSun 0\n");
  Scope scope;
  scope.words = {{ScopeWord::Field::User, "bob", false}};
  EXPECT_EQ(tableText(*overview(activity, select(activity, scope), {}).summary, {"sessions", "uploads", "downloads"}),
            "1 1 0\n");
}

TEST(Check, SaysWhatALogDoesNotTell) {
  ActivityMaker maker;
  Ledger& ledger = maker.log().ledger;
  ledger.understood = {999, 1};
  ledger.setAside = {1, 1};
  ledger.foreign = {2, 1};
  ledger.repeated = {1, 1};
  ledger.clockJumps = 2;
  maker.log().isComplete = false;
  maker.log().notes = {"Its end is damaged."};
  EXPECT_EQ(checkSentences(maker.activity()),
            (std::vector<std::string>{
                "a.log: 1,003 lines, 99.90 % understood, 1 line set aside.",
                "a.log: It holds 2 lines of other programs, 1 line that another file of the set holds too.",
                "a.log: Its clock went back 2 times; lines keep the order of the log.",
                "a.log: It was not read to its end.", "a.log: Its end is damaged."}));
  EXPECT_EQ(setAsidePercent(ledger), 10);
  ledger.understood.lines = 1'000'000'000;
  EXPECT_EQ(setAsidePercent(ledger), 1);
  EXPECT_EQ(setAsidePercent({}), 0);
}

// A log of several servers: what each of those in it cannot tell, and of no other.
TEST(Check, SaysWhatEachServerOfAMixedLogDoesNotTell) {
  ActivityMaker maker;
  maker.log().grammar = &syslog();
  maker.session("alice", "a");
  const auto all = grammars();
  maker.lastRow().server = static_cast<std::uint8_t>(std::find(all.begin(), all.end(), &openSsh()) - all.begin());
  std::vector<std::string> sentences = checkSentences(maker.activity());
  ASSERT_EQ(sentences.size(), 3u);
  EXPECT_EQ(sentences[1], "a.log: " + std::string(syslog().traits().missing));
  EXPECT_EQ(sentences[2], "a.log: " + std::string(openSsh().traits().missing));
}

}  // namespace
}  // namespace quorvel::test
