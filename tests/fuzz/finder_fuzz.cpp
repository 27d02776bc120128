// The session finder finds what the literal block-wise scan finds, however much of the log is read at once.
#include "tests/fuzz/fuzz_input.h"
#include "tests/reference/comparison.h"

namespace quorvel::test {

void runTarget(FuzzInput input) {
  constexpr std::size_t kLongestLog = 40'000;
  constexpr std::size_t kSmallestBlock = 64;
  FindOptions options;
  options.trunkLongUsernames = input.flag();
  const std::size_t blockSize = kSmallestBlock + input.number(2);
  const std::string log = input.expandedRest(kLongestLog);
  requireNone(compareFinder(log, options));
  options.blockSize = blockSize;
  requireNone(compareFinder(log, options));
}

}  // namespace quorvel::test
