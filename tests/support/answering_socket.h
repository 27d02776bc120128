// A socket whose other end answers every ping at once: no network is needed.
#pragma once

#include <sys/socket.h>
#include <unistd.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "tools/ping.h"

namespace quorvel::test {

/// A pair of sockets of which the program watches one.
class AnsweringSocket : public IcmpSocket {
 public:
  AnsweringSocket() {
    if (::socketpair(AF_UNIX, SOCK_DGRAM, 0, m_ends) != 0) throw std::runtime_error("no pair of sockets");
  }
  ~AnsweringSocket() override {
    for (const int end : m_ends)
      ::close(end);
  }
  [[nodiscard]] IpFamily family() const override { return IpFamily::V6; }
  [[nodiscard]] int descriptor() const override { return m_ends[0]; }
  [[nodiscard]] bool send(std::string_view message) override {
    constexpr char kEchoReply = static_cast<char>(129);
    std::string reply(message);
    reply[0] = kEchoReply;
    return ::send(m_ends[1], reply.data(), reply.size(), 0) > 0;
  }
  [[nodiscard]] std::optional<std::string> receive() override {
    char buffer[100];
    const auto count = ::recv(m_ends[0], buffer, sizeof buffer, MSG_DONTWAIT);
    if (count < 0) return std::nullopt;
    return std::string(buffer, static_cast<std::size_t>(count));
  }

 private:
  int m_ends[2] = {-1, -1};
};

inline IcmpOpening openAnsweringSocket(const std::string&) {
  return {std::make_unique<AnsweringSocket>(), {}};
}

}  // namespace quorvel::test
