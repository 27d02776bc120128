#include "counter/transfer_counter.h"

#include <gtest/gtest.h>

#include <vector>

#include "counter/transfer_tokens.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

const std::string kStamp = "Wed 19Jan05 13:28:08";
const std::string kConnect = "[2] " + kStamp + " - (000001) Connected to 10.0.0.5 (Local address 10.0.0.1)\r\n";
const std::string kSent =
    "[6] Wed 19Jan05 13:28:20 - (000001) Sent file C:\\a.zip successfully (12.5 Kb/sec - 40960 bytes)\r\n";
const std::string kReceived =
    "[6] Wed 19Jan05 13:28:40 - (000001) Received file C:\\b successfully (3.1 Kb/sec - 1024 bytes)\r\n";
const std::string kSendError = "[5] Wed 19Jan05 13:29:00 - (000001) Error sending file C:\\c.zip\r\n";
const std::string kReceiveError = "[5] Wed 19Jan05 13:29:00 - (000001) Error receiving file C:\\c.zip\r\n";
const std::string kClose = "[5] Wed 19Jan05 13:29:10 - (000001) Closing connection for user TEST\r\n";

class Observer : public CountObserver {
 public:
  void onFailedTransfer(std::string_view line, const TransferCount& totals) override {
    failed.push_back(std::to_string(totals.SendErrors + totals.ReceiveErrors) + ":" + std::string(line));
  }
  bool keepGoing(LogPosition) override { return ++steps < stopAt; }

  std::vector<std::string> failed;
  int steps = 0;
  int stopAt = 1'000'000;
};

class TransferCounterTest : public testing::Test {
 protected:
  LogFile log(const std::string& text) {
    return std::move(LogFile::open(systemFiles(), m_folder.write("a.log", text)).value());
  }
  TransferCount countAll(const std::string& text, CountOptions options = {}) {
    TransferCount totals;
    EXPECT_TRUE(CountAllTransfers(log(text), options, totals, m_observer).isOk());
    return totals;
  }
  /// Counts session (000001), whose connect line starts at offset.
  TransferCount countSession(const std::string& text, std::size_t offset = 0, int times = 1) {
    UserAct session;
    session.Position = static_cast<std::int32_t>(offset + 35);
    session.NumberInLog = "(000001)";
    session.IP = "10.0.0.5";
    session.ConnectTime = kStamp;
    TransferCount totals;
    const SessionSource source = [&]() { return times-- > 0 ? std::optional(session) : std::nullopt; };
    EXPECT_TRUE(CountSessionTransfers(log(text), source, {}, totals, m_observer).isOk());
    return totals;
  }

  TempFolder m_folder;
  Observer m_observer;
};

TEST_F(TransferCounterTest, CountsOneSession) {
  const std::string text = kConnect + kSent + kReceived + kSendError + kClose;
  EXPECT_EQ(countSession(text), (TransferCount{1, 1, 1, 0, 409'600'000, 10'240'000}));
  EXPECT_EQ(m_observer.failed, std::vector{"0:" + kSendError.substr(0, kSendError.size() - 2)});
  EXPECT_EQ(countSession(text, 0, 2), (TransferCount{2, 2, 2, 0, 819'200'000, 20'480'000}));
  EXPECT_EQ(m_observer.failed.back().front(), '1');
}

TEST_F(TransferCounterTest, CountsFromTheConnectLineToTheClosingLineOnly) {
  const TransferCount oneSent{1, 0, 0, 0, 409'600'000, 0};
  std::string other = kSent;
  other.replace(other.find("000001"), 6, "000002");
  std::string lowerCase = kSent;
  lowerCase.replace(lowerCase.find("Sent"), 4, "sent");
  EXPECT_EQ(countSession(kSent + kConnect + kSent + kClose + kSent, kSent.size()), oneSent);
  EXPECT_EQ(countSession(kConnect + other + lowerCase + kSent), oneSent);
  EXPECT_EQ(countSession(kConnect + kStamp + " - Starting FTP Server...\r\n" + kSent), oneSent);
  EXPECT_EQ(countSession(kSent + kSent), TransferCount());
  EXPECT_EQ(countSession(kConnect.substr(4) + "x (000001) Sent file a\r\n"), TransferCount());
}

TEST_F(TransferCounterTest, CountsTheWholeLog) {
  EXPECT_EQ(countAll(kSent + kConnect + kReceived + kClose + kSent + kReceiveError + kSendError + "no transfer"),
            (TransferCount{2, 1, 1, 1, 819'200'000, 10'240'000}));
  EXPECT_EQ(m_observer.failed.size(), 2u);
  EXPECT_EQ(countAll(kSent, {.countBytes = false}), (TransferCount{1, 0, 0, 0, 0, 0}));
  EXPECT_EQ(countAll(""), TransferCount());
}

TEST_F(TransferCounterTest, CountsALineOnceWhateverItHolds) {
  struct Case {
    const char* line;
    TransferCount expected;
  };
  const Case cases[] = {
      {"x Error sending  Sent file a Sent file b", {1, 0, 0, 0, 0, 0}},
      {"x Error receiving  Received file (1 Kb/sec - 3 bytes)", {0, 1, 0, 0, 0, 30'000}},
      {"x Error sending  Error receiving y", {0, 0, 1, 0, 0, 0}},
      {" Sent file ", {1, 0, 0, 0, 0, 0}},
      {"x Sent file (no bytes) (1 Kb/sec - 3 bytes)", {1, 0, 0, 0, 0, 0}},
      {"x Sent file (1 Kb/sec - many bytes)", {1, 0, 0, 0, 0, 0}},
      {"x Sent file (1 Kb/sec - 1.5 bytes)", {1, 0, 0, 0, 15'000, 0}},
      {"Sent file  sent file  Received  file x", {}},
  };
  for (const Case& c : cases)
    EXPECT_EQ(countAll(c.line), c.expected) << c.line;
}

TEST_F(TransferCounterTest, ReadsLogsThatEndLinesWithLf) {
  EXPECT_EQ(countAll("a\n Sent file \nb Error sending c\n"), (TransferCount{1, 0, 1, 0, 0, 0}));
  EXPECT_EQ(m_observer.failed, std::vector<std::string>{"0:b Error sending c"});
}

/// Lines and tokens at every place in relation to the blocks the log is read in.
TEST_F(TransferCounterTest, FindsTokensAcrossBlocks) {
  constexpr std::size_t kBlock = 1024 * 1024;
  for (std::size_t before = kBlock - kSent.size() - 5; before < kBlock + 5; before += 7) {
    const std::string text = std::string(before, '-') + "\r\n" + kSent + kReceived;
    EXPECT_EQ(countAll(text), (TransferCount{1, 1, 0, 0, 409'600'000, 10'240'000})) << before;
  }
}

TEST_F(TransferCounterTest, CountsLinesLongerThanItsMemory) {
  for (const std::size_t length : {300'000u, 1'048'500u, 1'048'570u, 1'048'576u, 3'000'000u}) {
    const std::string filler(length, 'x');
    const std::string text = kSent + "y Sent file " + filler + " (9 Kb/sec - 77 bytes)" + filler + "\r\n" + kReceived +
                             "begin Error sending " + filler + " end\r\n" + filler;
    m_observer = {};
    EXPECT_EQ(countAll(text), (TransferCount{2, 1, 1, 0, 410'370'000, 10'240'000})) << length;
    ASSERT_EQ(m_observer.failed.size(), 1u);
    EXPECT_TRUE(m_observer.failed[0].starts_with("0:begin Error sending xxx"));
    EXPECT_TRUE(m_observer.failed[0].ends_with("xxx end"));
  }
  EXPECT_EQ(countAll(std::string(2'000'000, 'x') + " Received file "), (TransferCount{0, 1, 0, 0, 0, 0}));
}

TEST_F(TransferCounterTest, KeepsTheTotalsWhenStopped) {
  m_observer.stopAt = 1;
  EXPECT_EQ(countAll(kSent + std::string(3'000'000, 'x') + "\r\n" + kReceived).ReceivedFiles, 0);
  EXPECT_EQ(m_observer.steps, 1);
}

TEST(TransferTokens, AreFoundAtEveryOffset) {
  for (const std::string_view token : {kSentFile, kReceivedFile, kErrorSending, kErrorReceiving}) {
    for (std::size_t before = 0; before < 150; ++before) {
      const std::string near = " Sent Error Received files ";
      const std::string text = near + std::string(before, ' ') + std::string(token);
      ASSERT_EQ(findTransferToken(text), near.size() + before) << token << before;
      ASSERT_EQ(findTransferToken(text + near, near.size() + before + 1), std::string_view::npos);
      ASSERT_EQ(findTransferToken(std::string_view(text).substr(0, text.size() - 1)), std::string_view::npos);
    }
  }
}

}  // namespace
}  // namespace quorvel::test
