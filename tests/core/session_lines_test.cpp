// What the lines are is compared with the literal scans; here is what nothing but a long log shows.
#include "core/session_lines.h"

#include <gtest/gtest.h>

#include "tests/reference/comparison.h"
#include "tests/support/memory_log.h"

namespace quorvel::test {
namespace {

struct OneLine : SessionLineConsumer {
  std::size_t sessions = 0;
  int lines = 0;

  bool beginSession(const UserAct&) override { return ++sessions != 0; }
  bool line(const SessionLine&) override { return ++lines == 0; }
  void endSession(const UserAct&) override {}
  bool keepGoing(std::uint64_t) override { return true; }
};

/// A session of the number 1 for each of the positions.
std::vector<UserAct> sessionsAt(std::initializer_list<std::int32_t> positions) {
  std::vector<UserAct> sessions;
  for (const std::int32_t position : positions)
    sessions.push_back({position, "", "(000001)", "", "", "", "", 1, 0});
  return sessions;
}

TEST(SessionLines, EndTheReadingAheadWithTheLastSession) {
  std::string text;
  for (int line = 0; line < 50'000; ++line)
    text += "- (000001) NOOP\r\n";
  const LogFile log = openLog(text);
  const auto sessions = sessionsAt({51});
  for (int run = 0; run < 50; ++run) {
    OneLine consumer;
    ASSERT_TRUE(readSessionLines(log, sourceOf(sessions), consumer, {.blockSize = 4096}).isOk());
    EXPECT_EQ(consumer.lines, 1);
  }
}

TEST(SessionLines, ComeToAnEndWhereverDamagedRecordsPoint) {
  const auto sessions = sessionsAt({51, -7, 60, 2'147'483'647, 0, -2'147'483'647 - 1, -1});
  OneLine consumer;
  EXPECT_TRUE(readSessionLines(openLog(std::string(200, '.')), sourceOf(sessions), consumer).isOk());
  EXPECT_EQ(consumer.sessions, sessions.size());
}

}  // namespace
}  // namespace quorvel::test
