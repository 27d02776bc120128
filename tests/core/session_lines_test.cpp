#include "core/session_lines.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/reference/session_text.h"
#include "tests/support/made_up_log.h"
#include "tests/support/records.h"

namespace quorvel::test {
namespace {

constexpr std::size_t kAllLines = 1'000'000'000;

/// How many lines of a session are wanted: most sessions are read to the end, some are given up on the way.
std::size_t wantedLines(const UserAct& session) {
  return session.LogonNo % 5 == 0 ? static_cast<std::size_t>(session.LogonNo % 7) : kAllLines;
}

std::string call(bool isOfSession, bool isServerStart, std::string_view text) {
  return std::string(isOfSession ? "S" : "").append(isServerStart ? "R " : " ").append(text);
}

/// Writes down all it is told; one text a call.
struct Recorder : SessionLineConsumer {
  bool beginSession(const UserAct& session) override {
    calls.push_back("begin " + describe(session));
    left = wantedLines(session);
    return left > 0;
  }
  bool line(const SessionLine& line) override {
    calls.push_back(call(line.hasSessionNumber(), line.hasServerStart, line.text));
    return --left > 0;
  }
  void endSession(const UserAct& session) override { calls.push_back("end " + std::to_string(session.LogonNo)); }
  bool keepGoing(std::uint64_t) override { return ++questions != stopAt; }

  std::vector<std::string> calls;
  std::size_t left = 0;
  int questions = 0;
  int stopAt = 0;  ///< 0: never
};

std::vector<std::string> expectedCalls(const MadeUpLog& log) {
  std::vector<std::string> calls;
  for (const UserAct& session : log.sessions) {
    calls.push_back("begin " + describe(session));
    std::vector<std::string> lines;
    if (session.Position != 0) lines = linesAbout(log.text, session);
    lines.resize(std::min(lines.size(), wantedLines(session)));
    for (const std::string& line : lines) {
      const std::string folded = lowerCase(line);
      const auto mark = [&](std::string_view text) { return folded.find(text) != std::string::npos; };
      calls.push_back(call(mark(lowerCase(session.NumberInLog)), mark("- starting ftp server..."), line));
    }
    calls.push_back("end " + std::to_string(session.LogonNo));
  }
  return calls;
}

TEST(SessionLines, AreTheLinesThatConcernTheSession) {
  constexpr std::array<std::size_t, 6> kReadSizes = {256, 1000, 4096, 10007, 65536, 1 << 20};
  for (std::uint64_t seed = 0; seed < 600; ++seed) {
    const MadeUpLog log(seed);
    const auto expected = expectedCalls(log);
    for (const std::size_t readSize : {std::size_t{256 * 1024}, kReadSizes[seed % kReadSizes.size()]}) {
      Recorder recorder;
      ASSERT_TRUE(readSessionLines(log.file, log.source(), recorder, readSize).isOk());
      ASSERT_EQ(recorder.calls, expected) << "seed " << seed << ", read " << readSize << " at once";
    }
  }
}

TEST(SessionLines, EndTheSessionInProgressWhenToldToStop) {
  const MadeUpLog log(19);
  ASSERT_GT(log.sessions.size(), 2u);
  for (int stopAt = 1; stopAt <= 4; ++stopAt) {
    Recorder recorder;
    recorder.stopAt = stopAt;
    EXPECT_TRUE(readSessionLines(log.file, log.source(), recorder).isOk());
    EXPECT_EQ(recorder.questions, stopAt);
    EXPECT_TRUE(recorder.calls.back().starts_with("end ")) << recorder.calls.back();
  }
}

}  // namespace
}  // namespace quorvel::test
