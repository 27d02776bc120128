// Any bytes as an answer from the network: only a whole echo reply is one, and it says what was asked for.
#include "classic/tools/icmp_packet.h"
#include "tests/fuzz/fuzz_input.h"

namespace quorvel::test {
namespace {

/// What the host that was asked answers to echoRequest().
std::string echoReply(IpFamily family, const Echo& echo) {
  std::string message = echoRequest(family, echo);
  message[0] = static_cast<char>(family == IpFamily::V6 ? 129 : 0);
  if (family == IpFamily::V6) return message;
  // The reply's type is 8 less than the request's, so its checksum is 8 * 256 more.
  unsigned sum = static_cast<unsigned char>(message[2]) * 256U + static_cast<unsigned char>(message[3]) + 8 * 256U;
  sum = (sum & 0xFFFF) + (sum >> 16);
  message[2] = static_cast<char>(sum >> 8);
  message[3] = static_cast<char>(sum & 0xFF);
  return message;
}

}  // namespace

void runTarget(FuzzInput input) {
  const IpFamily family = input.flag() ? IpFamily::V4 : IpFamily::V6;
  const Echo echo{static_cast<std::uint16_t>(input.number(2)), std::string(input.rest().substr(0, 2000))};
  const std::string whole = echoReply(family, echo);
  require(parseEchoReply(family, whole) == echo, "an answer holds what was sent");

  std::string damaged = whole;  // behind its first byte, by which a header in front is known
  damaged[1 + input.byte() % 7] ^= static_cast<char>(1 + input.byte() % 255);
  if (family == IpFamily::V4) {
    require(!parseEchoReply(family, damaged), "a damaged answer is none");
    require(parseEchoReply(family, "\x45" + std::string(19, '\0') + whole) == echo, "a header is passed over");
  }

  const auto any = parseEchoReply(family, input.rest());
  if (any) require(input.rest().ends_with(any->payload), "what is found stands in the message");
}

}  // namespace quorvel::test
