#include "classic/tools/ping.h"

#include <gtest/gtest.h>

#include "classic/tools/lookup.h"
#include "tests/support/answering_socket.h"

namespace quorvel::test {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using Messages = std::vector<std::string>;

/// Pings a host over a network that the test controls.
class PingTest : public testing::Test {
 protected:
  /// What is told of events, each behind a "|".
  static std::string told(const std::vector<PingEvent>& events) {
    std::string lines;
    for (const PingEvent& event : events)
      lines += '|' + pingLine("host", event);
    return lines;
  }
  std::string start() { return told(ping.start("10.0.0.5", now)); }
  std::string after(std::chrono::milliseconds wait) { return told(ping.poll(now += wait)); }

  Network network = [](const std::string& request) { return Messages{replyTo(request)}; };
  int sent = 0;
  Ping ping{[this](const std::string&) {
    const auto send = [this](const std::string& request) { return ++sent, network(request); };
    return IcmpOpening{std::make_unique<AnsweringSocket>(send), {}};
  }};
  Ping::Clock::time_point now{};
};

TEST_F(PingTest, SendsFourRequestsAndTimesTheReplies) {
  EXPECT_EQ(start(), "");
  for (int sequence = 1; sequence <= 4; ++sequence) {
    EXPECT_EQ(sent, sequence);
    EXPECT_EQ(after(3ms), "|Reply from host: 3.0 ms");
    EXPECT_EQ(after(Ping::kInterval - 4ms), "");
    EXPECT_EQ(sent, sequence);
    after(1ms);
  }
  EXPECT_FALSE(ping.isRunning());
  EXPECT_EQ(ping.descriptor(), -1);
}

TEST_F(PingTest, GoesOnAfterATimeOutAndWhenNothingCanBeSent) {
  network = [](const std::string&) { return Messages(); };
  EXPECT_EQ(start(), "");
  for (int i = 1; i <= 4; ++i)
    EXPECT_EQ(after(Ping::kTimeOut - 1ms) + after(1ms), "|No reply from host");
  EXPECT_FALSE(ping.isRunning());
  EXPECT_EQ(sent, 4);
  network = [](const std::string&) { return std::nullopt; };
  EXPECT_EQ(start(), "|No way to reach host");
  for (int i = 2; i <= 4; ++i)
    EXPECT_EQ(after(Ping::kInterval), "|No way to reach host");
  EXPECT_FALSE(ping.isRunning());
}

TEST_F(PingTest, PassesOverWhatIsNotTheAwaitedReply) {
  Messages messages;
  network = [&messages](const std::string& request) {
    const std::string reply = replyTo(request);
    messages.insert(messages.begin(), {request, reply + "x", reply.substr(0, 20), "", std::string(7, 0)});
    for (const std::size_t at : {1u, 7u, 20u})  // of another code, of another sequence, of another ping
      ++messages.emplace(messages.begin(), reply)->at(at);
    return messages;
  };
  EXPECT_EQ(start(), "");
  EXPECT_EQ(after(5ms), "");
  network = [&messages](const std::string& request) { return messages.push_back(replyTo(request)), messages; };
  EXPECT_EQ(start(), "");
  EXPECT_EQ(after(5ms), "|Reply from host: 5.0 ms");
}

TEST(IcmpSocket, IsOpenedForAddressesOrRefusedInOneLine) {
  for (const char* address : {"127.0.0.1", "::1", "", "localhost", "1.2.3.4.5", "fe80::1%no-such-interface"}) {
    const auto [socket, refusal] = openIcmpSocket(address);
    EXPECT_TRUE(socket != nullptr || !refusal.empty()) << address;
    EXPECT_TRUE(socket == nullptr || address == "127.0.0.1"s || address == "::1"s) << address;
    EXPECT_EQ(refusal.find('\n'), std::string::npos) << refusal;
  }
}

TEST(EchoRequest, HasTheLayoutOfTheProtocol) {
  EXPECT_EQ(echoRequest(IpFamily::V4, {0x0102, "abc"}), "\x08\0\x32\x9b\0\0\x01\x02"s + "abc");
  EXPECT_EQ(echoRequest(IpFamily::V6, {0xFFFE, "abc"}), "\x80\0\0\0\0\0\xff\xfe"s + "abc");
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
