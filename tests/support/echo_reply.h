// The other end of a ping.
#pragma once

#include <string>

#include "tools/icmp_packet.h"

namespace quorvel::test {

/// What the host that was asked answers to echoRequest().
[[nodiscard]] inline std::string echoReply(IpFamily family, const Echo& echo) {
  std::string message = echoRequest(family, echo);
  if (family == IpFamily::V6) {
    message[0] = static_cast<char>(129);
    return message;
  }
  // The reply's type is 8 less than the request's, so its checksum is 8 * 256 more.
  message[0] = 0;
  unsigned sum = static_cast<unsigned char>(message[2]) * 256U + static_cast<unsigned char>(message[3]) + 8 * 256U;
  sum = (sum & 0xFFFF) + (sum >> 16);
  message[2] = static_cast<char>(sum >> 8);
  message[3] = static_cast<char>(sum & 0xFF);
  return message;
}

}  // namespace quorvel::test
