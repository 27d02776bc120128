// Any bytes as an answer from the network: only a whole echo reply is one, and it says what was asked for.
#include "tests/fuzz/fuzz_input.h"
#include "tests/support/echo_reply.h"

namespace quorvel::test {

void runTarget(FuzzInput input) {
  const IpFamily family = input.flag() ? IpFamily::V4 : IpFamily::V6;
  const Echo echo{static_cast<std::uint16_t>(input.number(2)), std::string(input.rest().substr(0, 2000))};
  const std::string whole = echoReply(family, echo);
  require(parseEchoReply(family, whole) == echo, "an answer holds what was sent");

  std::string damaged = whole;  // behind its first byte, by which a header in front is known
  damaged[1 + input.byte() % 7] ^= static_cast<char>(1 + input.byte() % 255);
  if (family == IpFamily::V4) require(!parseEchoReply(family, damaged), "a damaged answer is none");

  const auto any = parseEchoReply(family, input.rest());
  if (any) require(input.rest().ends_with(any->payload), "what is found stands in the message");
}

}  // namespace quorvel::test
