// Sessions of a log that a fuzzer made.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "tests/fuzz/fuzz_input.h"
#include "tests/reference/comparison.h"

namespace quorvel::test {

/// Some sessions of the log, and some that only say they are: of a damaged record, or of another log.
[[nodiscard]] inline std::vector<UserAct> chooseSessions(const std::string& log, FuzzInput& input) {
  constexpr std::size_t kMost = 4;
  std::vector<UserAct> sessions = findSessions(log, {});
  if (sessions.size() > kMost) sessions.resize(kMost);
  for (unsigned odd = input.byte() % 3; odd > 0; --odd) {
    UserAct session = sessions.empty() ? UserAct() : sessions.front();
    session.Position = static_cast<std::int32_t>(input.number(3) % (log.size() + 100));
    const std::size_t number = input.number(3) % (log.size() + 1);
    session.NumberInLog = log.substr(number, kSessionNumberLength - 1);
    session.NumberInLog.resize(kSessionNumberLength, ')');
    session.NumberInLog.back() = ')';
    sessions.push_back(session);
  }
  if (input.flag()) std::reverse(sessions.begin(), sessions.end());
  return sessions;
}

}  // namespace quorvel::test
