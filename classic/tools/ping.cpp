#include "classic/tools/ping.h"

#include <cstdio>
#include <random>
#include <utility>

namespace quorvel {
namespace {

constexpr std::size_t kPayloadLength = 32;
/// Keeps a flood of foreign messages from holding up the caller.
constexpr int kMessagesPerPoll = 64;

std::string randomToken() {
  std::random_device source;
  std::string token(kPayloadLength, '\0');
  for (char& c : token)
    c = static_cast<char>(source() & 0xFF);
  return token;
}

std::string milliseconds(std::chrono::microseconds time) {
  if (time < std::chrono::microseconds(50)) return "less than 0.1 ms";
  char text[32];
  const std::chrono::duration<double, std::milli> value = time;
  std::snprintf(text, sizeof text, "%.1f ms", value.count());
  return text;
}

}  // namespace

std::string pingLine(std::string_view address, const PingEvent& event) {
  const std::string target(address);
  switch (event.kind) {
    case PingEvent::Kind::Reply:
      return "Reply from " + target + ": " + milliseconds(event.roundTrip);
    case PingEvent::Kind::TimedOut:
      return "No reply from " + target;
    case PingEvent::Kind::NotSent:
      return "No way to reach " + target;
    case PingEvent::Kind::Refused:
      break;
  }
  return event.refusal;
}

Ping::Ping(Opener opener) : m_opener(std::move(opener)) {}

std::vector<PingEvent> Ping::start(const std::string& address, Clock::time_point now) {
  cancel();
  Events events;
  IcmpOpening opening = m_opener(address);
  if (!opening.socket) {
    events.push_back({PingEvent::Kind::Refused, {}, std::move(opening.refusal)});
    return events;
  }
  m_socket = std::move(opening.socket);
  m_token = randomToken();
  sendNext(now, events);
  return events;
}

std::vector<PingEvent> Ping::poll(Clock::time_point now) {
  Events events;
  if (!isRunning()) return events;
  takeReplies(now, events);
  if (m_isInFlight && now - m_sentAt >= kTimeOut) settle({PingEvent::Kind::TimedOut, {}, {}}, events);
  if (isRunning() && !m_isInFlight && now - m_sentAt >= kInterval) sendNext(now, events);
  return events;
}

void Ping::cancel() {
  m_socket.reset();
  m_sequence = 0;
  m_isInFlight = false;
}

void Ping::sendNext(Clock::time_point now, Events& events) {
  ++m_sequence;
  m_sentAt = now;
  m_isInFlight = true;
  if (!m_socket->send(echoRequest(m_socket->family(), {m_sequence, m_token})))
    settle({PingEvent::Kind::NotSent, {}, {}}, events);
}

void Ping::takeReplies(Clock::time_point now, Events& events) {
  const Echo awaited{m_sequence, m_token};
  for (int i = 0; i < kMessagesPerPoll && m_isInFlight; ++i) {
    const auto message = m_socket->receive();
    if (!message) return;
    if (parseEchoReply(m_socket->family(), *message) != awaited) continue;
    const auto roundTrip = std::chrono::duration_cast<std::chrono::microseconds>(now - m_sentAt);
    settle({PingEvent::Kind::Reply, roundTrip, {}}, events);
  }
}

void Ping::settle(PingEvent event, Events& events) {
  events.push_back(std::move(event));
  m_isInFlight = false;
  if (m_sequence == kRequests) cancel();
}

}  // namespace quorvel
