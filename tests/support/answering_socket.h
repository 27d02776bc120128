// A socket whose other end is a test's: no network is needed.
#pragma once

#include <sys/socket.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "classic/tools/ping.h"

namespace quorvel::test {

/// What comes back at once for a request; nothing at all: it cannot be sent.
using Network = std::function<std::optional<std::vector<std::string>>(const std::string& request)>;

/// What the host that was asked over IPv6 answers.
inline std::string replyTo(std::string request) {
  request[0] = static_cast<char>(129);
  return request;
}

/// A pair of sockets of which the program watches one.
class AnsweringSocket : public IcmpSocket {
 public:
  explicit AnsweringSocket(Network network) : m_network(std::move(network)) {
    if (::socketpair(AF_UNIX, SOCK_DGRAM, 0, m_ends) != 0) throw std::runtime_error("no pair of sockets");
  }
  ~AnsweringSocket() override {
    for (const int end : m_ends)
      ::close(end);
  }
  [[nodiscard]] IpFamily family() const override { return IpFamily::V6; }
  [[nodiscard]] int descriptor() const override { return m_ends[0]; }
  [[nodiscard]] bool send(std::string_view message) override {
    const auto answers = m_network(std::string(message));
    for (const std::string& answer : answers.value_or(std::vector<std::string>()))
      (void)::send(m_ends[1], answer.data(), answer.size(), 0);
    return answers.has_value();
  }
  [[nodiscard]] std::optional<std::string> receive() override {
    char buffer[100];
    const auto count = ::recv(m_ends[0], buffer, sizeof buffer, MSG_DONTWAIT);
    if (count < 0) return std::nullopt;
    return std::string(buffer, static_cast<std::size_t>(count));
  }

 private:
  Network m_network;
  int m_ends[2] = {-1, -1};
};

inline IcmpOpening openAnsweringSocket(const std::string&) {
  return {std::make_unique<AnsweringSocket>([](const std::string& request) { return std::vector{replyTo(request)}; }),
          {}};
}

}  // namespace quorvel::test
