#include "report/alerts.h"

#include <gtest/gtest.h>

#include "tests/support/activity_maker.h"

namespace quorvel::test {
namespace {

TEST(AlertRules, AreRead) {
  struct Good {
    std::string_view text;
    AlertRule::What what;
    bool isMoreThan;
    std::int64_t limit;
    std::int64_t seconds;
    AlertRule::By by;
  };
  using What = AlertRule::What;
  using By = AlertRule::By;
  for (const Good& good : {Good{"failures>=5 in 10m by address", What::Failures, false, 5, 600, By::Address},
                           {"failures>=8 in 2m", What::Failures, false, 8, 120, By::All},
                           {"success after failures>=3", What::SuccessAfterFailures, false, 3, 0, By::Address},
                           {"success after failures >= 3 by user", What::SuccessAfterFailures, false, 3, 0, By::User},
                           {"deletes>=20 in 10m by user", What::Deletes, false, 20, 600, By::User},
                           {"bytes>=10G in 1d by user", What::Bytes, false, 10'000'000'000, 86400, By::User},
                           {"bytes > 1K", What::Bytes, true, 1000, 0, By::All},
                           {"set_aside>1%", What::SetAside, true, 100, 0, By::All},
                           {"set_aside>=0.25%", What::SetAside, false, 25, 0, By::All},
                           {"set_aside>0%", What::SetAside, true, 0, 0, By::All}}) {
    std::string mistake;
    const auto rule = parseAlertRule(good.text, mistake);
    ASSERT_TRUE(rule) << good.text << ": " << mistake;
    EXPECT_EQ(std::tie(rule->what, rule->isMoreThan, rule->limit, rule->seconds, rule->by),
              std::tie(good.what, good.isMoreThan, good.limit, good.seconds, good.by))
        << good.text;
  }
}

TEST(AlertRules, MistakesAreToldInASentence) {
  for (const std::string_view wrong : {"",
                                       "failure>=5",
                                       "failures",
                                       "failures=5",
                                       "failures>=",
                                       "failures>=-1",
                                       "failures>=0",
                                       "failures>=5K",
                                       "failures>=5 in",
                                       "failures>=5 in 10",
                                       "failures>=5 in 0m",
                                       "failures>=5 in 10y",
                                       "failures>=5 by",
                                       "failures>=5 by log",
                                       "failures>=5 by address in 10m",
                                       "failures>=5 in 10m x",
                                       "set_aside>1",
                                       "set_aside>101%",
                                       "set_aside>1.234%",
                                       "set_aside>1% in 10m",
                                       "success after failures>=3 in 1h",
                                       "bytes>=99999999999999999999",
                                       "bytes>=9999999999T"}) {
    std::string mistake;
    EXPECT_FALSE(parseAlertRule(wrong, mistake)) << wrong;
    EXPECT_FALSE(mistake.empty()) << wrong;
  }
}

/// What rules hold on.
std::string held(const Activity& activity, std::string_view text) {
  std::string mistake;
  const std::vector<AlertRule> rules = {parseAlertRule(text, mistake).value()};
  return tableText(*alertsTable(activity, rules, findAlerts(activity, select(activity, {}), rules)),
                   {"who", "value", "percent", "first", "last"});
}

TEST(Alerts, CountWithinATime) {
  ActivityMaker maker;
  maker.session("a", "g").logon(0, false).logon(300, false).logon(599, false).logon(600, false).logon(5000, false);
  maker.logon(5001, false).logon(5002, false);
  maker.session("b", "h").logon(1, false).logon(2, true);
  const Activity activity = maker.activity();
  // two times at which it held, the first one longer than ten minutes
  EXPECT_EQ(held(activity, "failures>=3 in 10m by address"),
            "g 3 - 2005-06-06T08:00:00 2005-06-06T08:10:00\ng 3 - 2005-06-06T09:23:20 2005-06-06T09:23:22\n");
  EXPECT_EQ(held(activity, "failures>3 in 10m by address"), "");
  EXPECT_EQ(held(activity, "failures>3 in 10m"), "- 4 - 2005-06-06T08:00:00 2005-06-06T08:10:00\n");
  EXPECT_EQ(held(activity, "failures>=8"), "- 8 - 2005-06-06T08:00:00 2005-06-06T09:23:22\n");
  EXPECT_EQ(held(activity, "sessions>=2 in 1m"), "- 2 - 2005-06-06T08:00:00 2005-06-06T08:00:00\n");
}

TEST(Alerts, SuccessAfterFailures) {
  ActivityMaker maker;
  maker.session("a", "g").logon(1, false).logon(2, false).logon(3, true).logon(4, false).logon(5, true);
  const Activity activity = maker.activity();
  EXPECT_EQ(held(activity, "success after failures>=2"), "g 2 - 2005-06-06T08:00:01 2005-06-06T08:00:03\n");
  EXPECT_EQ(held(activity, "success after failures>2 by user"), "");
}

TEST(Alerts, FilesAndBytes) {
  ActivityMaker maker;
  maker.session("a", "g").action(1, FileAction::Upload, "/x", 600).action(2, FileAction::Download, "/y", 400);
  maker.action(3, FileAction::Upload, "/z", 5000, Outcome::Failed)
      .action(4, FileAction::Delete, "/x")
      .action(5, FileAction::Delete, "/y", -1, Outcome::Failed);
  maker.log().ledger.understood = {98, 1};
  maker.log().ledger.setAside = {2, 1};
  const Activity activity = maker.activity();
  EXPECT_EQ(held(activity, "bytes>=1K in 1d by user"), "a 1000 - 2005-06-06T08:00:01 2005-06-06T08:00:02\n");
  EXPECT_EQ(held(activity, "bytes>1K by user"), "");
  EXPECT_EQ(held(activity, "broken>=1"), "- 1 - 2005-06-06T08:00:03 2005-06-06T08:00:03\n");
  EXPECT_EQ(held(activity, "deletes>=1"), "- 1 - 2005-06-06T08:00:04 2005-06-06T08:00:04\n");
  EXPECT_EQ(held(activity, "deletes>=2"), "");
  EXPECT_EQ(held(activity, "set_aside>1.99%"), "- - 2.00 - -\n");
  EXPECT_EQ(held(activity, "set_aside>2%"), "");
}

}  // namespace
}  // namespace quorvel::test
