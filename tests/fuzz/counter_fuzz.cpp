// Transfers are counted as a plain loop over the log's lines counts them: those of sessions and those of the whole log.
#include "tests/fuzz/session_input.h"

namespace quorvel::test {

void runTarget(FuzzInput input) {
  constexpr std::size_t kLongestLog = 600'000;
  FuzzInput odd = input;
  for (int bytes = 0; bytes < 14; ++bytes)
    (void)input.byte();
  const std::string log = input.expandedRest(kLongestLog);
  requireNone(compareCounts(log, chooseSessions(log, odd)));
}

}  // namespace quorvel::test
