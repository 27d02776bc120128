#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "classic/tools/icmp_socket.h"

namespace quorvel {
namespace {

struct Descriptor {
  explicit Descriptor(int value) : number(value) {}
  Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number >= 0) ::close(number);
  }
  int number;
};

class PosixIcmpSocket : public IcmpSocket {
 public:
  PosixIcmpSocket(Descriptor socket, IpFamily family) : m_socket(std::move(socket)), m_family(family) {}

  [[nodiscard]] IpFamily family() const override { return m_family; }
  [[nodiscard]] int descriptor() const override { return m_socket.number; }
  [[nodiscard]] bool send(std::string_view message) override {
    const auto sent = ::send(m_socket.number, message.data(), message.size(), 0);
    return sent == static_cast<ssize_t>(message.size());
  }
  [[nodiscard]] std::optional<std::string> receive() override {
    std::array<char, 2048> buffer{};
    const auto count = ::recv(m_socket.number, buffer.data(), buffer.size(), 0);
    if (count < 0) return std::nullopt;
    return std::string(buffer.data(), static_cast<std::size_t>(count));
  }

 private:
  Descriptor m_socket;
  IpFamily m_family;
};

using AddressInfo = std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)>;

AddressInfo numericAddress(const std::string& address) {
  addrinfo hints{};
  hints.ai_flags = AI_NUMERICHOST;
  hints.ai_socktype = SOCK_DGRAM;
  addrinfo* found = nullptr;
  if (::getaddrinfo(address.c_str(), nullptr, &hints, &found) != 0) found = nullptr;
  return {found, &::freeaddrinfo};
}

IcmpOpening refused(int error, const std::string& address) {
  if (error == EACCES || error == EPERM) return {nullptr, "This system does not allow you to ping."};
  if (error == EAFNOSUPPORT || error == EPROTONOSUPPORT || error == EPROTOTYPE)
    return {nullptr, "This system cannot ping this kind of address: " + address};
  return {nullptr, "No way to reach " + address};
}

bool makeNonBlocking(int descriptor) {
  return ::fcntl(descriptor, F_SETFL, O_NONBLOCK) == 0 && ::fcntl(descriptor, F_SETFD, FD_CLOEXEC) == 0;
}

}  // namespace

IcmpOpening openIcmpSocket(const std::string& address) {
  const AddressInfo target = numericAddress(address);
  if (!target) return {nullptr, "Not an address: " + address};
  const IpFamily family = target->ai_family == AF_INET6 ? IpFamily::V6 : IpFamily::V4;
  const int protocol = family == IpFamily::V6 ? int{IPPROTO_ICMPV6} : int{IPPROTO_ICMP};
  Descriptor socket(::socket(target->ai_family, SOCK_DGRAM, protocol));
  if (socket.number < 0 || !makeNonBlocking(socket.number)) return refused(errno, address);
  if (::connect(socket.number, target->ai_addr, target->ai_addrlen) != 0) return refused(errno, address);
  return {std::make_unique<PosixIcmpSocket>(std::move(socket), family), {}};
}

}  // namespace quorvel
