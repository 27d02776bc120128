// Sessions whose records are known by hand. Each is asked of the finder and of the block-wise scan, so that the two
// cannot agree on something wrong.
#include "core/servu_find_user_info.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/reference/session_scan.h"
#include "tests/support/memory_log.h"
#include "tests/support/records.h"

namespace quorvel::test {
namespace {

struct Collector : FindObserver {
  void onSession(const UserAct& record) override { records.push_back(record); }
  bool keepGoing(LogPosition) override { return records.size() < stopAfter; }

  std::vector<UserAct> records;
  std::size_t stopAfter = 1'000'000;
};

std::vector<UserAct> find(const std::string& log, bool trunkLongUsernames = true) {
  Collector collector;
  const auto end = ServuFindUserInfo(openLog(log), {.trunkLongUsernames = trunkLongUsernames}, collector);
  EXPECT_TRUE(end.isOk() && end.value() == FindEnd::Finished);
  EXPECT_EQ(collector.records, scanSessions(log, trunkLongUsernames));
  return collector.records;
}

std::string at(const std::string& time, const std::string& text) {
  return std::string("Mon 05Mar01 ").append(time).append(" - ").append(text).append("\r\n");
}
std::string stamp(const std::string& time) {
  return std::string("Mon 05Mar01 ").append(time);
}

const std::string kConnect = at("10:15:02", "(000012) Connected to 10.0.0.5 (Local address 10.0.0.1)");
const std::string kUser = at("10:15:04", "(000012) USER alice");
const std::string kLogon = at("10:15:05", "(000012) User alice logged in");
const std::string kQuitLine = at("10:20:40", "(000012) QUIT");
const std::string kClose = at("10:20:41", "(000012) Closing connection");
const std::string kStart = at("10:30:00", "Starting FTP Server...");

/// A line of exactly size bytes.
std::string filler(std::size_t size) {
  return std::string(size - 2, '.') + "\r\n";
}

TEST(ServuFindUserInfo, FillsAllFieldsOfTheRecord) {
  const auto records = find(kConnect + kUser + kLogon + kClose);
  const UserAct expected{31, "alice", "(000012)", "10.0.0.5", stamp("10:15:02"), stamp("10:15:05"), stamp("10:20:41"),
                         1,  0};
  EXPECT_EQ(records, std::vector{expected});
}

TEST(ServuFindUserInfo, DecidesNameLogonAndLogoff) {
  const auto refused = [](const std::string& text) { return at("10:15:05", "(000012) 530 " + text); };
  struct Case {
    const char* what;
    std::string log;
    std::string name;
    std::string logon;
    std::string logoff;
  };
  const std::string end = stamp("10:20:41");
  const std::string logon = stamp("10:15:05");
  const std::vector<Case> cases = {
      {"restart", kUser + kLogon + kStart + kClose, "alice", logon, kServerRestart},
      {"restart after the close", kUser + kLogon + kClose + kStart, "alice", logon, end},
      {"no end", kUser + kLogon, "alice", logon, kNotLoggedOut},
      {"password", kUser + refused("Not logged in - password incorrect.") + kClose, "alice", logon + kBadPassword, end},
      {"other wording", kUser + refused("Incorrect password.") + kClose, "alice", logon + kBadPassword, end},
      {"address", kUser + refused("Not logged in - unauthorized IP address.") + kClose, "alice",
       logon + kUnauthorizedIp, end},
      {"home", kUser + refused("Not logged in - cannot find home directory.") + kClose, "alice",
       logon + kHomeDirNotFound, end},
      {"another 530", kUser + refused("Too many users.") + kClose, "alice", logon + kNotLoggedIn, end},
      {"quit without logon", kUser + kQuitLine + kClose, "alice", end + kNotLoggedIn, end},
      {"quit, no close", kUser + kQuitLine, "QUIT", stamp("10:20:40") + kNotLoggedIn, kNotLoggedOut},
      {"nothing but a name", kUser, "alice", kNotLoggedIn, kNotLoggedOut},
      {"quit before user", kQuitLine + kUser + kClose, "QUIT", end, end},
      {"close without user", kClose, "QUIT", end, end},
      {"user behind the close", kClose + kUser, "alice", end + kNotLoggedIn, end},
      {"quit and user behind the close", kClose + kUser + kQuitLine, "QUIT", end, end},
      {"nothing at all", "", "NO_USER_FOUND", stamp("10:15:02"), kNotLoggedOut},
      {"anonymous", at("10:15:04", "(000012) USER anonymous") + at("10:15:05", "(000012) Anonymous logged in"),
       "anonymous", logon, kNotLoggedOut},
      {"other letter case", at("10:15:04", "(000012) user alice") + at("10:15:05", "(000012) USER ALICE LOGGED IN"),
       "alice", logon, kNotLoggedOut},
      {"user behind the first block", filler(4000) + kUser + kLogon, "NO_USER_FOUND", stamp("10:15:02"), kNotLoggedOut},
      {"the same with an end", filler(4000) + kUser + kLogon + kClose, "alice", logon, end},
      {"close far behind a restart", kUser + kStart + filler(9000) + kClose, "alice", kNotLoggedIn, kServerRestart},
      {"another session's lines", at("10:15:03", "(000013) USER bob") + kClose, "QUIT", end, end},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const auto records = find(kConnect + c.log);
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].Name, c.name);
    EXPECT_EQ(records[0].LogonTime, c.logon);
    EXPECT_EQ(records[0].LogoffTime, c.logoff);
  }
}

TEST(ServuFindUserInfo, CutsLongNamesOnlyWhenAsked) {
  const std::string log = kConnect + at("10:15:04", "(000012) USER thirteen_char");
  EXPECT_EQ(find(log, true).at(0).Name, "thirteen_cha");
  EXPECT_EQ(find(log, false).at(0).Name, "thirteen_char");
}

TEST(ServuFindUserInfo, EndsANameWhereTheLogEndsItsLines) {
  const std::string user = "Mon 05Mar01 10:15:04 - (000012) USER alice";
  EXPECT_EQ(find(kConnect.substr(0, kConnect.size() - 2) + "\n" + user + "\nnext\r\n").at(0).Name, "alice");
  EXPECT_EQ(find(kConnect + user + "\nnext\r\n", false).at(0).Name, "alice\nnext");
  EXPECT_EQ(find(kConnect + user).at(0).Name, "alice");
}

TEST(ServuFindUserInfo, FindsEverySessionOfALog) {
  EXPECT_TRUE(find("").empty());
  EXPECT_TRUE(find(kUser + kLogon + kClose).empty());
  for (std::size_t before = 3900; before < 4020; ++before)
    EXPECT_EQ(find(filler(before) + kConnect).size(), 1u) << before;
  // A number in use again: the older session ends where the younger one does.
  const auto records = find(kConnect + kUser + kConnect + kClose);
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].LogoffTime, records[1].LogoffTime);
  EXPECT_EQ(records[1].LogonNo, 2);
}

TEST(ServuFindUserInfo, StopsWhenTold) {
  Collector collector;
  collector.stopAfter = 2;
  const auto end = ServuFindUserInfo(openLog(kConnect + kConnect + kConnect), {}, collector);
  ASSERT_TRUE(end.isOk());
  EXPECT_EQ(end.value(), FindEnd::Stopped);
  EXPECT_EQ(collector.records.size(), 2u);
}

}  // namespace
}  // namespace quorvel::test
