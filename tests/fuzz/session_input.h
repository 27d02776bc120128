// Sessions of a made-up log, and the collectors that take what the engine says about them.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "core/servu_find_user_info.h"
#include "core/session_lines.h"
#include "tests/fuzz/fuzz_input.h"

namespace quorvel::test {

struct RecordCollector final : FindObserver {
  std::vector<UserAct> records;
  void onSession(const UserAct& record) override { records.push_back(record); }
  bool keepGoing(LogPosition) override { return true; }
};

[[nodiscard]] inline std::vector<UserAct> findSessions(const LogFile& log, const FindOptions& options) {
  RecordCollector collector;
  const auto end = ServuFindUserInfo(log, options, collector);
  require(end.isOk() && end.value() == FindEnd::Finished, "the log is scanned to its end");
  return std::move(collector.records);
}

/// Some sessions of the log, and some that only say they are: of a damaged record, or of another log.
[[nodiscard]] inline std::vector<UserAct> chooseSessions(const LogFile& log, std::string_view text, FuzzInput& input) {
  constexpr std::size_t kMost = 4;
  std::vector<UserAct> sessions = findSessions(log, {});
  if (sessions.size() > kMost) sessions.resize(kMost);
  for (unsigned odd = input.byte() % 3; odd > 0; --odd) {
    UserAct session = sessions.empty() ? UserAct() : sessions.front();
    session.Position = static_cast<std::int32_t>(input.number(3) % (text.size() + 100));
    const std::size_t number = input.number(3) % (text.size() + 1);
    session.NumberInLog = text.substr(number, kSessionNumberLength - 1);
    session.NumberInLog.resize(kSessionNumberLength, ')');
    session.NumberInLog.back() = ')';
    sessions.push_back(session);
  }
  if (input.flag()) std::reverse(sessions.begin(), sessions.end());
  return sessions;
}

/// Hands sessions out one by one.
[[nodiscard]] inline SessionSource sourceOf(const std::vector<UserAct>& sessions) {
  return [&sessions, next = std::size_t{0}]() mutable {
    return next < sessions.size() ? std::optional(sessions[next++]) : std::nullopt;
  };
}

}  // namespace quorvel::test
