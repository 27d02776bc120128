// The lines handed out for sessions are those that a plain loop over the log finds, and both filters choose from them
// what the same loop chooses.
#include "tests/fuzz/session_input.h"

namespace quorvel::test {

void runTarget(FuzzInput input) {
  constexpr std::size_t kLongestLog = 100'000;
  constexpr std::size_t kSmallestBlock = 64;
  const unsigned choice = input.byte();
  const std::size_t blockSize = kSmallestBlock + input.number(2);
  const SessionInput made(input, kLongestLog);
  const CommandFilterOptions on{(choice & 1) != 0, (choice & 2) != 0, (choice & 4) != 0, (choice & 8) != 0};
  requireNone(compareSessionLines(made.log, made.sessions, on, blockSize));
}

}  // namespace quorvel::test
