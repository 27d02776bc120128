#include "classic/tools/icmp_socket.h"

namespace quorvel {

IcmpOpening openIcmpSocket(const std::string&) {
  return {nullptr, "This system does not allow you to ping."};
}

}  // namespace quorvel
