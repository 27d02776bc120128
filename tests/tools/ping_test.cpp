#include "tools/ping.h"

#include <gtest/gtest.h>

#include <deque>
#include <thread>

#include "tests/support/echo_reply.h"
#include "tools/lookup.h"

namespace quorvel::test {
namespace {

using namespace std::chrono_literals;
using Kind = PingEvent::Kind;

/// The other end of a network that the test controls.
struct Network {
  IpFamily family = IpFamily::V4;
  std::vector<std::string> sent;
  std::deque<std::string> waiting;
  bool isUp = true;

  /// Answers the request sent last.
  void answer(std::uint16_t sequence) { waiting.push_back(echoReply(family, {sequence, sent.back().substr(8)})); }
};

struct FakeSocket : IcmpSocket {
  explicit FakeSocket(Network& shared) : network(shared) {}
  [[nodiscard]] IpFamily family() const override { return network.family; }
  [[nodiscard]] int descriptor() const override { return 7; }
  [[nodiscard]] bool send(std::string_view message) override {
    network.sent.emplace_back(message);
    return network.isUp;
  }
  [[nodiscard]] std::optional<std::string> receive() override {
    if (network.waiting.empty()) return std::nullopt;
    std::string message = network.waiting.front();
    network.waiting.pop_front();
    return message;
  }

  Network& network;
};

class PingTest : public ::testing::Test {
 protected:
  std::vector<Kind> kindsAfter(std::chrono::milliseconds wait) {
    now += wait;
    std::vector<Kind> kinds;
    for (const PingEvent& event : ping.poll(now))
      kinds.push_back(event.kind);
    return kinds;
  }

  Network network;
  Ping ping{[this](const std::string&) { return IcmpOpening{std::make_unique<FakeSocket>(network), {}}; }};
  Ping::Clock::time_point now{};
};

TEST_F(PingTest, SendsFourRequestsAndTimesTheReplies) {
  for (const IpFamily family : {IpFamily::V4, IpFamily::V6}) {
    network.family = family;
    network.sent.clear();
    EXPECT_TRUE(ping.start("10.0.0.5", now).empty());
    for (std::uint16_t sequence = 1; sequence <= 4; ++sequence) {
      ASSERT_EQ(network.sent.size(), sequence);
      network.answer(sequence);
      now += 3ms;
      EXPECT_EQ(pingLine("10.0.0.5", ping.poll(now).at(0)), "Reply from 10.0.0.5: 3.0 ms");
      EXPECT_TRUE(kindsAfter(Ping::kInterval - 4ms).empty());
      EXPECT_EQ(network.sent.size(), sequence);
      kindsAfter(1ms);
    }
    EXPECT_FALSE(ping.isRunning());
    EXPECT_EQ(ping.descriptor(), -1);
  }
}

TEST_F(PingTest, GoesOnAfterATimeOutAndWhenNothingCanBeSent) {
  EXPECT_TRUE(ping.start("10.0.0.5", now).empty());
  for (int i = 1; i <= 4; ++i) {
    EXPECT_TRUE(kindsAfter(Ping::kTimeOut - 1ms).empty());
    EXPECT_EQ(kindsAfter(1ms), std::vector{Kind::TimedOut});
  }
  EXPECT_FALSE(ping.isRunning());
  EXPECT_EQ(network.sent.size(), 4U);
  network.isUp = false;
  EXPECT_EQ(pingLine("10.0.0.5", ping.start("10.0.0.5", now).at(0)), "No way to reach 10.0.0.5");
  for (int i = 2; i <= 4; ++i)
    EXPECT_EQ(kindsAfter(Ping::kInterval), std::vector{Kind::NotSent});
  EXPECT_FALSE(ping.isRunning());
}

TEST_F(PingTest, PassesOverWhatIsNotTheAwaitedReply) {
  EXPECT_TRUE(ping.start("10.0.0.5", now).empty());
  network.answer(2);
  network.waiting.push_back(network.sent.back());                              // a request, not a reply
  network.waiting.push_back(echoReply(IpFamily::V4, {1, "another's token"}));  // somebody else's ping
  network.answer(1);
  network.waiting.back()[20] ^= 1;  // damaged on the way
  network.waiting.insert(network.waiting.end(), {"", std::string(3, '\x45')});
  network.waiting.push_back(std::string(7, '\0'));
  EXPECT_TRUE(kindsAfter(5ms).empty());
  network.answer(1);
  network.waiting.back().insert(0, std::string("\x45") + std::string(19, '\0'));  // with its IP header
  EXPECT_EQ(kindsAfter(5ms), std::vector{Kind::Reply});
}

TEST(PingSystem, LoopbackAnswersOrTheRefusalIsOneLine) {
  for (const char* address : {"127.0.0.1", "::1"}) {
    Ping ping;
    std::vector<PingEvent> events = ping.start(address, Ping::Clock::now());
    for (int i = 0; i < 200 && events.empty(); ++i) {
      std::this_thread::sleep_for(10ms);
      events = ping.poll(Ping::Clock::now());
    }
    ASSERT_FALSE(events.empty()) << address;
    const std::string line = pingLine(address, events[0]);
    EXPECT_TRUE(events[0].kind == Kind::Reply || events[0].kind == Kind::Refused) << line;
    EXPECT_TRUE(!line.empty() && line.find('\n') == std::string::npos) << line;
  }
}

TEST(PingSystem, OnlyNumericAddressesAreOpened) {
  for (const char* address : {"", "localhost", "1.2.3.4.5", "fe80::1%no-such-interface"})
    EXPECT_FALSE(openIcmpSocket(address).refusal.empty()) << address;
}

TEST(EchoRequest, HasTheLayoutOfTheProtocol) {
  using namespace std::string_literals;
  EXPECT_EQ(echoRequest(IpFamily::V4, {0x0102, "abc"}), "\x08\0\x32\x9b\0\0\x01\x02"s + "abc");
  EXPECT_EQ(echoRequest(IpFamily::V6, {0xFFFE, "abc"}), "\x80\0\0\0\0\0\xff\xfe"s + "abc");
}

TEST(HostOrAddress, AcceptsNamesAndAddressesOnly) {
  const std::string longest(253, 'a');
  for (const std::string& text : {std::string("ftp.example.org"), std::string("fe80::1%eth0"), longest})
    EXPECT_TRUE(isHostOrAddress(text)) << text;
  for (const char* text : {"", "a b", "-x", "a;b", "a/b", "\xE5.example.org", "a\n"})
    EXPECT_FALSE(isHostOrAddress(text)) << text;
  EXPECT_FALSE(isHostOrAddress(longest + "a") || isHostOrAddress(std::string("a\0b", 3)));
}

}  // namespace
}  // namespace quorvel::test
