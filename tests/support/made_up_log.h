// A made-up log with its sessions.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/log_file.h"
#include "core/session_lines.h"
#include "tests/reference/session_scan.h"
#include "tests/support/log_maker.h"
#include "tests/support/memory_log.h"

namespace quorvel::test {

/// The log of a seed and at most 30 of its sessions, now and then in another order than the log's, with a session of
/// unknown position or an untrue connect time among them.
struct MadeUpLog {
  explicit MadeUpLog(std::uint64_t seed)
      : text(makeLog(seed)), sessions(scanSessions(text, true)), file(openLog(text)) {
    constexpr std::size_t kMostSessions = 30;
    std::mt19937_64 random(seed);
    if (seed % 4 == 0) std::shuffle(sessions.begin(), sessions.end(), random);
    if (sessions.size() > kMostSessions) sessions.resize(kMostSessions);
    if (sessions.empty() || seed % 5 != 0) return;
    sessions[random() % sessions.size()].Position = 0;
    sessions[random() % sessions.size()].ConnectTime = "Thu 20Jan05 00:00:00";
  }

  [[nodiscard]] SessionSource source() const {
    return [this, next = std::size_t{0}]() mutable {
      return next < sessions.size() ? std::optional(sessions[next++]) : std::nullopt;
    };
  }

  std::string text;
  std::vector<UserAct> sessions;
  LogFile file;
};

}  // namespace quorvel::test
