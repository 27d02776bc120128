// The finder and the activity engine on the same classic logs: they agree wherever both rules give the same answer, and
// the second test names where they do not.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "classic/find/current_sessions.h"
#include "classic/find/servu_find_user_info.h"
#include "tests/support/opened_log.h"

namespace quorvel::test {
namespace {

const FindOptions kWholeNames{.trunkLongUsernames = false};

struct Records : FindObserver {
  explicit Records(std::size_t ofSlots) : slotSize(ofSlots) {}
  void onSession(const FoundSession& session) override {
    const UserAct record = decodeRecord(session.record, slotSize).value_or(UserAct());
    text += record.NumberInLog + ' ' + record.Name + ' ' + record.IP + " | " + record.ConnectTime + " | " +
            record.LogonTime + " | " + record.LogoffTime + '\n';
  }
  bool keepGoing(LogPosition) override { return true; }

  std::size_t slotSize;
  std::string text;
};

std::string byFinder(const std::string& log) {
  Records records(kRecordSize);
  EXPECT_TRUE(ServuFindUserInfo(openLog(log), kWholeNames, records).isOk());
  return records.text;
}

std::string byActivity(const std::string& log) {
  Records records(currentSlotSize(kWholeNames));
  EXPECT_TRUE(findCurrentSessions(openLog(log), kWholeNames, records).isOk());
  return records.text;
}

/// `2 01 USER alice`: a bracket, the second, and what follows the number (000001).
std::string logOf(std::initializer_list<std::string_view> rows) {
  std::string log;
  for (const std::string_view row : rows) {
    log.append("[").append(row.substr(0, 1)).append("] Mon 06Jun05 08:03:").append(row.substr(2, 2));
    log.append(" - (000001) ").append(row.substr(5)).append("\r\n");
  }
  return log;
}
std::string serverStart(std::string_view second) {
  return "[1] Mon 06Jun05 08:03:" + std::string(second) + " - Starting FTP Server...\r\n";
}

const std::string kConnect = logOf({"2 01 Connected to 10.0.0.5 (Local address 10.0.0.1)"});
const std::string kUser = logOf({"2 02 USER alice", "6 02 331 User name okay, need password.", "2 03 PASS xxxxx"});
const std::string kLogon = logOf({"5 04 User alice logged in"});
const std::string kClosing = logOf({"5 09 Closing connection for user ALICE (00:00:08 connected)"});

TEST(Engines, AgreeOnClassicLogs) {
  std::ifstream file(QUORVEL_SAMPLES "/ftp-server.log", std::ios::binary);
  const std::string sample{std::istreambuf_iterator<char>(file), {}};
  ASSERT_FALSE(sample.empty());
  const std::string logs[] = {
      sample,
      kConnect + kUser + kLogon + kClosing,
      kConnect + kUser + kLogon,
      kConnect + kUser + kLogon + serverStart("08") + kConnect,
      kConnect + kUser + logOf({"6 04 530 Not logged in - password incorrect."}) + kClosing,
      kConnect + kUser + logOf({"6 04 530 Not logged in - unauthorized IP address."}) + kClosing,
      kConnect + kUser + logOf({"6 04 530 Not logged in - cannot find home directory."}) + kClosing,
      kConnect + kUser + logOf({"6 04 530 Sorry."}) + kClosing,
      kConnect + kUser + kClosing,
      kConnect + logOf({"2 05 QUIT"}) + kClosing,
      kConnect,
      kConnect + kUser + kLogon + kClosing + kConnect + kUser + kLogon + kClosing,
  };
  for (const std::string& log : logs)
    EXPECT_EQ(byActivity(log), byFinder(log)) << log;
}

TEST(Engines, DifferWhereTheFinderOnlyLooksForTexts) {
  struct Case {
    const char* what;
    std::string log;
    std::string activity;
    std::string finder;
  };
  const std::string first = "(000001) alice 10.0.0.5 | Mon 06Jun05 08:03:01 | Mon 06Jun05 08:03:04";
  const std::string end = " | Mon 06Jun05 08:03:09\n";
  const Case cases[] = {
      {"a client types a connect line", kConnect + kUser + kLogon + logOf({"2 05 Connected to 6.6.6.6 (x)"}) + kClosing,
       first + end, first + end + "(000001) QUIT 6.6.6.6 | Mon 06Jun05 08:03:05 | Mon 06Jun05 08:03:09" + end},
      {"a client types the end", kConnect + kUser + kLogon + logOf({"2 05 Closing connection"}) + kClosing, first + end,
       first + " | Mon 06Jun05 08:03:05\n"},
      {"another name logs on after a refusal",
       kConnect + logOf({"2 02 USER bob", "2 02 PASS x", "6 03 530 Not logged in - password incorrect."}) + kUser +
           kLogon + kClosing,
       first + end, "(000001) bob 10.0.0.5 | Mon 06Jun05 08:03:01 | Mon 06Jun05 08:03:03 BAD_PASSWORD" + end},
      {"the log begins in the middle of a session", kUser + kLogon + kClosing,
       "(000001) alice  |  | Mon 06Jun05 08:03:04" + end, ""},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(byActivity(each.log), each.activity) << each.what;
    EXPECT_EQ(byFinder(each.log), each.finder) << each.what;
  }
}

}  // namespace
}  // namespace quorvel::test
