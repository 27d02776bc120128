// A socket for ICMP echo that plain users may open. One source file per system.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "classic/tools/icmp_packet.h"

namespace quorvel {

/// Never blocks. Receives only what the address it was opened for sends.
class IcmpSocket {
 public:
  IcmpSocket() = default;
  IcmpSocket(const IcmpSocket&) = delete;
  IcmpSocket& operator=(const IcmpSocket&) = delete;
  virtual ~IcmpSocket() = default;

  [[nodiscard]] virtual IpFamily family() const = 0;
  /// Becomes readable when a message waits. Stays the same for the socket's life.
  [[nodiscard]] virtual int descriptor() const = 0;
  /// False when the message could not be sent, for instance because there is no route.
  [[nodiscard]] virtual bool send(std::string_view message) = 0;
  /// The next message that waits; empty when there is none.
  [[nodiscard]] virtual std::optional<std::string> receive() = 0;
};

/// A socket, or one plain sentence that says why there is none.
struct IcmpOpening {
  std::unique_ptr<IcmpSocket> socket;
  std::string refusal;
};

/// address is numeric, IPv4 or IPv6, the latter with an optional "%interface".
[[nodiscard]] IcmpOpening openIcmpSocket(const std::string& address);

}  // namespace quorvel
