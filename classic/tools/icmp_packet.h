// ICMP echo messages as bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

enum class IpFamily {
  V4,
  V6,
};

/// What an echo request asks to get back. The identifier is not part of it: the system puts in its own.
struct Echo {
  std::uint16_t sequence = 0;
  std::string payload;
  friend bool operator==(const Echo&, const Echo&) = default;
};

/// The request as it is handed to a datagram socket. The checksum of an IPv6 message is left to the system, which
/// alone knows the addresses it covers.
[[nodiscard]] std::string echoRequest(IpFamily family, const Echo& echo);

/// The echo inside a reply. Empty for every other message and for a damaged one. An IPv4 header in front, which some
/// systems leave there, is passed over.
[[nodiscard]] std::optional<Echo> parseEchoReply(IpFamily family, std::string_view message);

}  // namespace quorvel
