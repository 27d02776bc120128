#include "classic/tools/icmp_packet.h"

#include <algorithm>

namespace quorvel {
namespace {

constexpr std::size_t kHeaderLength = 8;
constexpr std::size_t kChecksumOffset = 2;
constexpr std::size_t kSequenceOffset = 6;

struct EchoTypes {
  unsigned char request;
  unsigned char reply;
};

constexpr EchoTypes echoTypes(IpFamily family) {
  return family == IpFamily::V4 ? EchoTypes{8, 0} : EchoTypes{128, 129};
}

unsigned byteAt(std::string_view text, std::size_t index) {
  return static_cast<unsigned char>(text[index]);
}

unsigned wordAt(std::string_view text, std::size_t index) {
  return (byteAt(text, index) << 8) | byteAt(text, index + 1);
}

void putWord(std::string& text, std::size_t index, unsigned value) {
  text[index] = static_cast<char>(value >> 8 & 0xFF);
  text[index + 1] = static_cast<char>(value & 0xFF);
}

/// The Internet checksum; 0 over a message that holds its own right checksum.
unsigned checksum(std::string_view message) {
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i + 1 < message.size(); i += 2)
    sum += wordAt(message, i);
  if (message.size() % 2 != 0) sum += byteAt(message, message.size() - 1) << 8;
  while (sum > 0xFFFF)
    sum = (sum & 0xFFFF) + (sum >> 16);
  return ~sum & 0xFFFF;
}

std::string_view withoutIpHeader(std::string_view message) {
  if (message.empty() || byteAt(message, 0) >> 4 != 4) return message;
  const std::size_t length = (byteAt(message, 0) & 0x0F) * std::size_t{4};
  return message.substr(std::min(length, message.size()));
}

}  // namespace

std::string echoRequest(IpFamily family, const Echo& echo) {
  std::string message(kHeaderLength, '\0');
  message[0] = static_cast<char>(echoTypes(family).request);
  putWord(message, kSequenceOffset, echo.sequence);
  message += echo.payload;
  if (family == IpFamily::V4) putWord(message, kChecksumOffset, checksum(message));
  return message;
}

std::optional<Echo> parseEchoReply(IpFamily family, std::string_view message) {
  if (family == IpFamily::V4) message = withoutIpHeader(message);
  if (message.size() < kHeaderLength) return std::nullopt;
  if (byteAt(message, 0) != echoTypes(family).reply || byteAt(message, 1) != 0) return std::nullopt;
  if (family == IpFamily::V4 && checksum(message) != 0) return std::nullopt;
  return Echo{static_cast<std::uint16_t>(wordAt(message, kSequenceOffset)), std::string(message.substr(kHeaderLength))};
}

}  // namespace quorvel
