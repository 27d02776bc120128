// Sessions whose records are known by hand. Each is asked of the finder and of the block-wise scan, so that the two
// cannot agree on something wrong.
#include "core/servu_find_user_info.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/reference/comparison.h"
#include "tests/reference/session_scan.h"
#include "tests/support/records.h"

namespace quorvel::test {
namespace {

std::vector<UserAct> find(const std::string& log, bool trunkLongUsernames = true) {
  const auto records = findSessions(log, {.trunkLongUsernames = trunkLongUsernames});
  EXPECT_EQ(records, scanSessions(log, trunkLongUsernames));
  return records;
}

std::string at(const std::string& time, const std::string& text) {
  return "Mon 05Mar01 " + time + " - " + text + "\r\n";
}

const std::string kConnect = at("10:15:02", "(000012) Connected to 10.0.0.5 (Local address 10.0.0.1)");
const std::string kUser = at("10:15:04", "(000012) USER alice");
const std::string kLogon = at("10:15:05", "(000012) User alice logged in");
const std::string kQuitLine = at("10:20:40", "(000012) QUIT");
const std::string kClose = at("10:20:41", "(000012) Closing connection");
const std::string kStart = at("10:30:00", "Starting FTP Server...");

TEST(ServuFindUserInfo, DecidesNameLogonAndLogoff) {
  const auto refused = [](const std::string& text) { return kUser + at("10:15:05", "(000012) 530 " + text) + kClose; };
  const std::string connect = "Mon 05Mar01 10:15:02";
  const std::string logon = "Mon 05Mar01 10:15:05";
  const std::string quit = "Mon 05Mar01 10:20:40";
  const std::string end = "Mon 05Mar01 10:20:41";
  const std::array<std::string, 4> cases[] = {
      {kUser + kLogon + kStart + kClose, "alice", logon, kServerRestart},
      {kUser + kLogon, "alice", logon, kNotLoggedOut},
      {refused("Not logged in - password incorrect."), "alice", logon + kBadPassword, end},
      {refused("Incorrect password."), "alice", logon + kBadPassword, end},
      {refused("Not logged in - unauthorized IP address."), "alice", logon + kUnauthorizedIp, end},
      {refused("Not logged in - cannot find home directory."), "alice", logon + kHomeDirNotFound, end},
      {refused("Too many users."), "alice", logon + kNotLoggedIn, end},
      {kUser + kQuitLine + kClose, "alice", end + kNotLoggedIn, end},
      {kUser + kQuitLine, "QUIT", quit + kNotLoggedIn, kNotLoggedOut},
      {kUser, "alice", kNotLoggedIn, kNotLoggedOut},
      {kClose + kUser, "alice", end + kNotLoggedIn, end},
      {"", "NO_USER_FOUND", connect, kNotLoggedOut},
      {at("10:15:05", "(000012) user anonymous") + at("10:15:05", "(000012) Anonymous logged in"), "anonymous", logon,
       kNotLoggedOut},
      {std::string(4000, '.') + "\r\n" + kUser + kLogon, "NO_USER_FOUND", connect, kNotLoggedOut},
      {at("10:15:03", "(000013) USER bob") + kClose, "QUIT", end, end},
  };
  for (const auto& [log, name, logonTime, logoffTime] : cases) {
    const auto records = find(kConnect + log);
    ASSERT_EQ(records.size(), 1u) << log;
    const UserAct& found = records[0];
    EXPECT_EQ(std::tie(found.Name, found.LogonTime, found.LogoffTime), std::tie(name, logonTime, logoffTime)) << log;
  }
}

TEST(ServuFindUserInfo, CutsNamesWhenAskedAndWhereTheLogEndsItsLines) {
  const std::string user = "Mon 05Mar01 10:15:04 - (000012) USER thirteen_char";
  EXPECT_EQ(find(kConnect + user).at(0).Name, "thirteen_cha");
  EXPECT_EQ(find(kConnect + user + "\nnext\r\n", false).at(0).Name, "thirteen_char\nnext");
  EXPECT_EQ(find("first line\n" + kConnect + user + "\nnext\r\n", false).at(0).Name, "thirteen_char");
}

}  // namespace
}  // namespace quorvel::test
