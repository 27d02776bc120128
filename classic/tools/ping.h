// Four echo requests to one address, driven from outside so that no caller ever waits.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "classic/tools/icmp_socket.h"

namespace quorvel {

/// What became of one echo request.
struct PingEvent {
  enum class Kind {
    Reply,
    TimedOut,
    NotSent,
    Refused,  ///< no socket; ends the ping
  };
  Kind kind = Kind::Refused;
  std::chrono::microseconds roundTrip{};  ///< with Reply
  std::string refusal;                    ///< with Refused
};

/// One line for the list of results, e.g. "Reply from 10.0.0.5: 1.3 ms".
[[nodiscard]] std::string pingLine(std::string_view address, const PingEvent& event);

/// Usage: start(), then poll() whenever descriptor() is readable and every few 10 ms, until isRunning() is false.
/// Requests go out one after the other: the next one when its predecessor was answered or given up.
class Ping {
 public:
  using Clock = std::chrono::steady_clock;
  using Opener = std::function<IcmpOpening(const std::string& address)>;

  static constexpr int kRequests = 4;
  static constexpr std::chrono::milliseconds kTimeOut{1000};
  /// Least time between two requests.
  static constexpr std::chrono::milliseconds kInterval{200};

  explicit Ping(Opener opener = openIcmpSocket);

  /// Ends a ping that runs and sends the first request. Returns what happened at once, which may be nothing.
  [[nodiscard]] std::vector<PingEvent> start(const std::string& address, Clock::time_point now);
  [[nodiscard]] std::vector<PingEvent> poll(Clock::time_point now);
  void cancel();

  [[nodiscard]] bool isRunning() const { return m_socket != nullptr; }
  /// -1 when not running.
  [[nodiscard]] int descriptor() const { return m_socket ? m_socket->descriptor() : -1; }

 private:
  using Events = std::vector<PingEvent>;
  void sendNext(Clock::time_point now, Events& events);
  void takeReplies(Clock::time_point now, Events& events);
  /// The request in flight is done with; the ping ends with the last one.
  void settle(PingEvent event, Events& events);

  Opener m_opener;
  std::unique_ptr<IcmpSocket> m_socket;
  std::string m_token;  ///< tells our replies from those to an earlier ping
  std::uint16_t m_sequence = 0;
  bool m_isInFlight = false;
  Clock::time_point m_sentAt;
};

}  // namespace quorvel
