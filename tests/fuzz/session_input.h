// Sessions of a log that a fuzzer made.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "tests/fuzz/fuzz_input.h"
#include "tests/reference/comparison.h"

namespace quorvel::test {

/// A log with some of its sessions, and some that only say they are: of a damaged record, or of another log.
struct SessionInput {
  SessionInput(FuzzInput input, std::size_t longestLog) {
    constexpr std::size_t kMost = 4;
    FuzzInput odd = input.take(14);
    log = input.expandedRest(longestLog);
    sessions = findSessions(log, {});
    if (sessions.size() > kMost) sessions.resize(kMost);
    for (unsigned more = odd.byte() % 3; more > 0; --more) {
      UserAct session = sessions.empty() ? UserAct() : sessions.front();
      session.Position = static_cast<std::int32_t>(odd.number(3) % (log.size() + 100));
      session.NumberInLog = log.substr(odd.number(3) % (log.size() + 1), kSessionNumberLength - 1);
      session.NumberInLog.resize(kSessionNumberLength, ')');
      session.NumberInLog.back() = ')';
      sessions.push_back(session);
    }
    if (odd.flag()) std::reverse(sessions.begin(), sessions.end());
  }

  std::string log;
  std::vector<UserAct> sessions;
};

}  // namespace quorvel::test
