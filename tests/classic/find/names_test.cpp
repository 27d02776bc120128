// Names as a log may hold them, and the line that logs each on. Whatever else a log holds is told by its fuzz target.
#include <gtest/gtest.h>

#include "classic/find/record_format.h"
#include "classic/find/servu_find_user_info.h"
#include "tests/support/opened_log.h"
#include "tests/support/records.h"

namespace quorvel::test {
namespace {

using namespace std::string_literals;

struct Records final : FindObserver {
  void onSession(const FoundSession& session) override { all.push_back(decodeRecord(session.record).value()); }
  bool keepGoing(LogPosition) override { return true; }
  std::vector<UserAct> all;
};

std::string line(const std::string& time, const std::string& event) {
  return "Mon 06Jun05 " + time + " - (000001) " + event;
}

TEST(Names, AreCutInTheRecordOnlyAndEndWithTheirLine) {
  struct Case {
    const char* what;
    std::string name;
    std::string lineEnd;
    std::string nextLineEnd;
    std::string inRecord;
  };
  std::string often = "a";
  for (int i = 0; i < 100; ++i)
    often += " logged in";
  const Case cases[] = {
      {"12 characters", "abcdefghijkl", "\r\n", "\r\n", "abcdefghijkl"},
      {"13 characters", "abcdefghijklm", "\r\n", "\r\n", "abcdefghijkl"},
      {"of the longest that is found", std::string(3973, 'n'), "\r\n", "\r\n", std::string(12, 'n')},
      {"holds the text behind a name", "a logged in", "\r\n", "\r\n", "a logged in"},
      {"holds it often", "a logged in logged in logged in", "\n", "\n", "a logged in "},
      {"holds it a hundred times", often, "\r\n", "\r\n", "a logged in "},
      {"CR LF, then bare LF", "bob", "\r\n", "\n", "bob"},
      {"bare LF, then CR LF", "bob", "\n", "\r\n", "bob"},
      {"CR alone", "bob", "\r", "\n", "bob"},
  };
  for (const auto& [what, name, end, nextEnd, inRecord] : cases) {
    SCOPED_TRACE(what);
    const LogFile log = openLog(line("08:00:01", "Connected to 10.0.0.5 (x)") + end + line("08:00:02", "USER " + name) +
                                end + line("08:00:03", "User " + name + " logged in") + nextEnd +
                                line("08:00:04", "Closing connection") + nextEnd);
    Records records;
    ASSERT_TRUE(ServuFindUserInfo(log, {}, records).isOk());
    ASSERT_EQ(records.all.size(), 1u);
    EXPECT_EQ(records.all[0].Name, inRecord);
    EXPECT_EQ(records.all[0].LogonTime, "Mon 06Jun05 08:00:03");
  }
}

}  // namespace
}  // namespace quorvel::test
