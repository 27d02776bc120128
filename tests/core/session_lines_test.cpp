// What the lines are is compared with the literal scans; here is what nothing but a long log shows.
#include "core/session_lines.h"

#include <gtest/gtest.h>

#include <optional>
#include <utility>
#include <vector>

#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

struct OneLine : SessionLineConsumer {
  int sessions = 0;
  int lines = 0;

  bool beginSession(const UserAct&) override { return ++sessions != 0; }
  bool line(const SessionLine&) override { return ++lines == 0; }
  void endSession(const UserAct&) override {}
  bool keepGoing(std::uint64_t) override { return true; }
};

TEST(SessionLines, EndTheReadingAheadWithTheLastSession) {
  const TempFolder folder;
  std::string text;
  for (int line = 0; line < 50'000; ++line)
    text += "- (000001) NOOP\r\n";
  const auto log = LogFile::open(systemFiles(), folder.write("ftp.log", text));
  for (int run = 0; run < 50; ++run) {
    OneLine consumer;
    std::optional<UserAct> next = UserAct{51, "", "(000001)", "", "", "", "", 1, 0};
    const SessionSource source = [&next] { return std::exchange(next, std::nullopt); };
    ASSERT_TRUE(readSessionLines(log.value(), source, consumer, 4096).isOk());
    EXPECT_EQ(consumer.lines, 1);
  }
}

TEST(SessionLines, ComeToAnEndWhereverDamagedRecordsPoint) {
  const TempFolder folder;
  const auto log = LogFile::open(systemFiles(), folder.write("ftp.log", std::string(200, '.')));
  std::vector<std::int32_t> positions = {-1, -2'147'483'647 - 1, 0, 2'147'483'647, 60, -7, 51};
  const auto expected = static_cast<int>(positions.size());
  OneLine consumer;
  const SessionSource source = [&positions]() -> std::optional<UserAct> {
    if (positions.empty()) return std::nullopt;
    const UserAct session{positions.back(), "", "(000001)", "", "", "", "", 1, 0};
    positions.pop_back();
    return session;
  };
  EXPECT_TRUE(readSessionLines(log.value(), source, consumer).isOk());
  EXPECT_EQ(consumer.sessions, expected);
}

}  // namespace
}  // namespace quorvel::test
