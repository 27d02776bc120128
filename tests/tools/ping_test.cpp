#include "tools/ping.h"

#include <gtest/gtest.h>

#include <deque>
#include <thread>

#include "tests/support/echo_reply.h"
#include "tools/lookup.h"

namespace quorvel::test {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

/// Pings a host over a network that the test controls.
class PingTest : public testing::Test {
 protected:
  struct FakeSocket : IcmpSocket {
    explicit FakeSocket(PingTest& test) : network(test) {}
    [[nodiscard]] IpFamily family() const override { return network.family; }
    [[nodiscard]] int descriptor() const override { return 7; }
    [[nodiscard]] bool send(std::string_view message) override {
      network.sent.emplace_back(message);
      return network.isUp;
    }
    [[nodiscard]] std::optional<std::string> receive() override {
      if (network.waiting.empty()) return std::nullopt;
      const std::string message = network.waiting.front();
      network.waiting.pop_front();
      return message;
    }

    PingTest& network;
  };

  /// What is told of events, each behind a "|".
  static std::string told(const std::vector<PingEvent>& events) {
    std::string lines;
    for (const PingEvent& event : events)
      lines += '|' + pingLine("host", event);
    return lines;
  }
  std::string start() { return told(ping.start("10.0.0.5", now)); }
  std::string after(std::chrono::milliseconds wait) { return told(ping.poll(now += wait)); }
  /// Answers the request sent last.
  void answer(std::uint16_t sequence) { waiting.push_back(echoReply(family, {sequence, sent.back().substr(8)})); }

  IpFamily family = IpFamily::V4;
  std::vector<std::string> sent;
  std::deque<std::string> waiting;
  bool isUp = true;
  Ping ping{[this](const std::string&) { return IcmpOpening{std::make_unique<FakeSocket>(*this), {}}; }};
  Ping::Clock::time_point now{};
};

TEST_F(PingTest, SendsFourRequestsAndTimesTheReplies) {
  for (const IpFamily each : {IpFamily::V4, IpFamily::V6}) {
    family = each;
    sent.clear();
    EXPECT_EQ(start(), "");
    for (std::uint16_t sequence = 1; sequence <= 4; ++sequence) {
      ASSERT_EQ(sent.size(), sequence);
      answer(sequence);
      EXPECT_EQ(after(3ms), "|Reply from host: 3.0 ms");
      EXPECT_EQ(after(Ping::kInterval - 4ms), "");
      EXPECT_EQ(sent.size(), sequence);
      after(1ms);
    }
    EXPECT_FALSE(ping.isRunning());
    EXPECT_EQ(ping.descriptor(), -1);
  }
}

TEST_F(PingTest, GoesOnAfterATimeOutAndWhenNothingCanBeSent) {
  EXPECT_EQ(start(), "");
  for (int i = 1; i <= 4; ++i)
    EXPECT_EQ(after(Ping::kTimeOut - 1ms) + after(1ms), "|No reply from host");
  EXPECT_FALSE(ping.isRunning());
  EXPECT_EQ(sent.size(), 4U);
  isUp = false;
  EXPECT_EQ(start(), "|No way to reach host");
  for (int i = 2; i <= 4; ++i)
    EXPECT_EQ(after(Ping::kInterval), "|No way to reach host");
  EXPECT_FALSE(ping.isRunning());
}

TEST_F(PingTest, PassesOverWhatIsNotTheAwaitedReply) {
  EXPECT_EQ(start(), "");
  answer(2);
  answer(1);
  waiting.back()[20] ^= 1;  // damaged on the way
  const std::string& request = sent.back();
  for (const std::string& other :
       {request, echoReply(IpFamily::V4, {1, "another's token"}), ""s, "EEE"s, std::string(7, 0)})
    waiting.push_back(other);
  EXPECT_EQ(after(5ms), "");
  answer(1);
  waiting.back().insert(0, "\x45" + std::string(19, '\0'));  // with its IP header
  EXPECT_EQ(after(5ms), "|Reply from host: 10.0 ms");
}

TEST_F(PingTest, LoopbackAnswersOrTheRefusalIsOneLine) {
  for (const char* address : {"127.0.0.1", "::1"}) {
    Ping real;
    std::string line = told(real.start(address, Ping::Clock::now()));
    for (int i = 0; i < 200 && line.empty(); ++i) {
      std::this_thread::sleep_for(10ms);
      line = told(real.poll(Ping::Clock::now()));
    }
    EXPECT_TRUE(line.starts_with("|Reply from host: ") || !real.isRunning()) << line;
    EXPECT_TRUE(line.size() > 1 && line.find('\n') == std::string::npos) << line;
  }
  for (const char* address : {"", "localhost", "1.2.3.4.5", "fe80::1%no-such-interface"})
    EXPECT_FALSE(openIcmpSocket(address).refusal.empty()) << address;
}

TEST(EchoRequest, HasTheLayoutOfTheProtocol) {
  EXPECT_EQ(echoRequest(IpFamily::V4, {0x0102, "abc"}), "\x08\0\x32\x9b\0\0\x01\x02"s + "abc");
  EXPECT_EQ(echoRequest(IpFamily::V6, {0xFFFE, "abc"}), "\x80\0\0\0\0\0\xff\xfe"s + "abc");
  for (const std::string& bad : {"\x81\0\0\0\0\0\0"s, "\x81\1\0\0\0\0\0\1"s})  // too short, of another code
    EXPECT_FALSE(parseEchoReply(IpFamily::V6, bad));
}

TEST(HostOrAddress, AcceptsNamesAndAddressesOnly) {
  const std::string longest(253, 'a');
  for (const std::string& text : {"ftp.example.org"s, "fe80::1%eth0"s, longest})
    EXPECT_TRUE(isHostOrAddress(text)) << text;
  for (const std::string& text :
       {""s, "a b"s, "-x"s, "a;b"s, "a/b"s, "\xE5.example.org"s, "a\n"s, "a\0b"s, longest + "a"})
    EXPECT_FALSE(isHostOrAddress(text)) << text;
}

}  // namespace
}  // namespace quorvel::test
