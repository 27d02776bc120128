// Decides when a long command lets the interface run: by time, not per record, so that it costs nothing.
#pragma once

#include <chrono>

namespace quorvel {

class Pacer {
 public:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds kInterval{20};

  /// An interval of zero makes every question answer yes: for tests that watch every step.
  explicit Pacer(Clock::duration interval = kInterval) : m_interval(interval) {}

  /// True when the interval has passed since the last time this said so.
  [[nodiscard]] bool isDue() {
    const auto now = Clock::now();
    if (now < m_next) return false;
    m_next = now + m_interval;
    return true;
  }

  /// The same where the question comes every few microseconds: looks at the clock now and then only.
  [[nodiscard]] bool isDueAmongMany() {
    constexpr unsigned kQuestionsPerLook = 16;
    return (m_interval == Clock::duration::zero() || ++m_questions % kQuestionsPerLook == 0) && isDue();
  }

 private:
  unsigned m_questions = 0;
  Clock::duration m_interval;
  Clock::time_point m_next{};
};

}  // namespace quorvel
