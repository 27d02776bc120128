// Transfers are counted as a plain loop over the log's lines counts them: those of sessions and those of the whole log.
#include "tests/fuzz/session_input.h"

namespace quorvel::test {

void runTarget(FuzzInput input) {
  constexpr std::size_t kLongestLog = 600'000;
  const SessionInput made(input, kLongestLog);
  requireNone(compareCounts(made.log, made.sessions));
}

}  // namespace quorvel::test
