// Reading a log whole: blocks, lines longer than any block, what is no log at all, logs that grow.
#include <gtest/gtest.h>

#include "tests/support/activity_text.h"

namespace quorvel::test {
namespace {

std::string sampleSession(int number) {
  std::string lines;
  const std::string n = std::to_string(number);
  for (const std::string_view text : {"Connected to 10.0.0.9 (Local address 10.0.0.1)", "USER alice", "QUIT"})
    lines += "2 " + n + " " + std::string(text) + "\n";
  return logOf(lines + "5 " + n + " Closing connection\n", LogShape::Classic);
}

TEST(Reader, ReadsTheSameWithAnyNumberOfThreads) {
  std::string log;
  for (int i = 1; i < 6000; ++i)
    log += sampleSession(i);
  ASSERT_GT(log.size(), 1000000u);
  const Activity one = readActivity(log, {.threads = 1});
  const Activity many = readActivity(log, {.threads = 4});
  EXPECT_EQ(one.sessions.size(), 5999u);
  EXPECT_EQ(ActivityText(many, log).sessions(), ActivityText(one, log).sessions());
  EXPECT_EQ(many.logs.at(0).ledger.bytes(), log.size());
  EXPECT_TRUE(many.logs.at(0).isComplete);
  EXPECT_EQ(many.logs.at(0).sessions, 5999u);
}

TEST(Reader, TakesALineOfManyBlocksAsOne) {
  const std::string front = sampleSession(1);
  const std::string back = sampleSession(2);
  for (const std::string_view filler : {"x", "\xC3\xA9"}) {
    std::string name;
    while (name.size() < 10 * 1000 * 1000)
      name += filler;
    const std::string longLine = "[2] Mon 06Jun05 08:00:01 - (000001) USER " + name + "\r\n";
    const std::string forged =
        "[5] Mon 06Jun05 08:00:01 - (000001) Sent file " + name + " successfully (1 Kb/sec - 7 bytes)\r\n";
    const std::string log = front + longLine + forged + back;
    const Activity activity = readActivity(log);
    const LogInfo& info = activity.logs.at(0);
    EXPECT_EQ(info.encoding, TextEncoding::Utf8);
    EXPECT_EQ(info.ledger.lines(), 10u);
    EXPECT_EQ(info.ledger.bytes(), log.size());
    EXPECT_EQ(info.ledger.setAside.bytes, forged.size());
    EXPECT_EQ(activity.actions.size(), 0u);
    ASSERT_EQ(activity.sessions.size(), 2u);
    EXPECT_EQ(activity.sessions[1].position, front.size() + longLine.size() + forged.size() + 1);
    EXPECT_EQ(activity.text(activity.sessions[0].user).size(), kLongestText);
    EXPECT_LT(info.ledger.shapes.at(0).example.size(), 1000u);
  }
}

TEST(Reader, SaysWhatIsNoLog) {
  for (const std::string_view text : {"", "\r\n\r\n", "GET / HTTP/1.1\n", "\x1f\x8b\x08garbage", "[1] Mon"}) {
    const Activity activity = readActivity(std::string(text));
    ASSERT_EQ(activity.logs.size(), 1u);
    EXPECT_TRUE(activity.logs[0].name.starts_with("test.log: ")) << activity.logs[0].name;
  }
}

TEST(Reader, DecidesTheTextOnceALog) {
  const std::string log = sampleSession(1);
  EXPECT_EQ(readActivity("\xEF\xBB\xBF" + log).logs[0].encoding, TextEncoding::Utf8);
  EXPECT_EQ(readActivity("\xEF\xBB\xBF" + log).logs[0].ledger.setAside.lines, 0u);
  EXPECT_EQ(readActivity(log + "[2] Mon 06Jun05 08:00:01 - (000001) USER j\xFCrgen").logs[0].encoding,
            TextEncoding::Windows1252);
}

TEST(Reader, CountsHowOftenTheClockWentBack) {
  std::string log;
  for (const std::string_view clock : {"08:00:05", "08:00:04", "09:00:00", "08:00:00", "08:00:01"})
    log += "[1] Mon 06Jun05 " + std::string(clock) + " - Listening on port 21\n";
  const Ledger ledger = readActivity(log).logs.at(0).ledger;
  EXPECT_EQ(ledger.clockJumps, 1u);  // a second is no jump
  EXPECT_EQ(ledger.first, civilTime(2005, 6, 6, 8, 0, 5));
  EXPECT_EQ(ledger.last, civilTime(2005, 6, 6, 8, 0, 1));
}

TEST(Reader, KeepsAThousandShapesAndOneForAllOthers) {
  constexpr std::size_t kShapes = 1100;
  std::string lines;
  for (std::size_t i = 0; i < kShapes; ++i)
    lines.append("5 1 strange ").append(1, static_cast<char>('a' + i % 26)).append(i / 26, 'x').append("\n");
  std::string log = logOf(lines, LogShape::Classic);
  const Activity activity = readActivity(log);
  const Ledger& ledger = activity.logs.at(0).ledger;
  std::uint64_t bytes = 0;
  for (const SetAsideShape& shape : ledger.shapes)
    bytes += shape.bytes;
  EXPECT_EQ(bytes, ledger.setAside.bytes);
  EXPECT_EQ(ledger.setAside.lines, kShapes);
  ASSERT_EQ(ledger.shapes.size(), 1001u);
  EXPECT_EQ(ledger.shapes.back().shape, "");
  EXPECT_EQ(ledger.shapes.back().lines, kShapes - 1000);
}

TEST(Reader, ReadsOnWhereAGrowingLogEnded) {
  const std::string log = sampleSession(1) + sampleSession(2);
  MemorySource source("");
  ActivityReader reader;
  std::size_t sessions = 0;
  for (std::size_t at = 0; at < log.size(); at += 7) {
    source.append(std::string_view(log).substr(at, 7));
    ASSERT_TRUE(reader.read(source, {.isGrowing = true}).isOk());
    const Activity now = reader.snapshot();
    EXPECT_GE(now.sessions.size(), sessions);
    sessions = now.sessions.size();
  }
  ASSERT_TRUE(reader.read(source, {}).isOk());
  const Activity activity = reader.snapshot();
  EXPECT_EQ(ActivityText(activity, log).sessions(), ActivityText(readActivity(log), log).sessions());
  EXPECT_EQ(activity.logs.at(0).ledger.bytes(), log.size());
  EXPECT_TRUE(activity.logs.at(0).isComplete);
}

TEST(Reader, SetsNothingOfTheSamplesAside) {
  struct Sample {
    std::string_view file;
    std::string_view server;
    std::size_t sessions, logons, actions;
  };
  for (const Sample& sample :
       {Sample{"ftp-server.log", "serv-u-classic", 25, 25, 33}, Sample{"serv-u.log", "serv-u", 23, 29, 41}}) {
    SCOPED_TRACE(sample.file);
    const auto log = systemFiles().readWhole(std::filesystem::path(QUORVEL_SAMPLES) / sample.file);
    ASSERT_TRUE(log.isOk());
    const Activity activity = readActivity(log.value());
    const LogInfo& info = activity.logs.at(0);
    EXPECT_EQ(info.grammar->name(), sample.server);
    EXPECT_EQ(info.ledger.understood.bytes, log.value().size());
    EXPECT_EQ(activity.sessions.size(), sample.sessions);
    EXPECT_EQ(activity.logons.size(), sample.logons);
    EXPECT_EQ(activity.actions.size(), sample.actions);
  }
}

TEST(Reader, StopsWhenItIsToldTo) {
  std::string log;
  for (int i = 1; i < 12000; ++i)
    log += sampleSession(i);
  int asked = 0;
  const Activity activity =
      readActivity(log, {.threads = 2, .keepGoing = [&asked](const ReadProgress&) { return ++asked < 2; }});
  EXPECT_EQ(asked, 2);
  EXPECT_FALSE(activity.logs.at(0).isComplete);
  EXPECT_GT(activity.sessions.size(), 0u);
  EXPECT_LT(activity.sessions.size(), 11999u);
}

TEST(Reader, KeepsLogsApart) {
  ActivityReader reader;
  MemorySource first(logOf("2 1 Connected to 10.0.0.1 (Local address 10.0.0.1)\n", LogShape::Classic), "a.log");
  MemorySource second(logOf("2 1 USER alice\n", LogShape::Classic), "b.log");
  ASSERT_TRUE(reader.read(first, {}).isOk());
  ASSERT_TRUE(reader.read(second, {}).isOk());
  const Activity activity = reader.snapshot();
  ASSERT_EQ(activity.sessions.size(), 2u);
  EXPECT_EQ(activity.sessions[1].log, 1u);
  EXPECT_EQ(activity.sessions[0].lines, 1u);
}

}  // namespace
}  // namespace quorvel::test
