// The session finder finds what the literal block-wise scan finds, however much of the log is read at once.
#include "tests/fuzz/session_input.h"
#include "tests/reference/session_scan.h"
#include "tests/support/records.h"

namespace {

using namespace quorvel;
using namespace quorvel::test;

void compare(const std::vector<UserAct>& found, const std::vector<UserAct>& expected, std::size_t blockSize) {
  if (found == expected) return;
  const auto [f, e] = std::mismatch(found.begin(), found.end(), expected.begin(), expected.end());
  std::cerr << "expected " << (e == expected.end() ? "no record" : describe(*e)) << "\nfound    "
            << (f == found.end() ? "no record" : describe(*f)) << "\nreading " << blockSize << " bytes at once\n";
  require(false, "the finder agrees with the block-wise scan");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kLongestLog = 40'000;
  constexpr std::size_t kSmallestBlock = 64;
  FuzzInput input(data, size);
  FindOptions options;
  options.trunkLongUsernames = input.flag();
  const std::size_t blockSize = kSmallestBlock + input.number(2);
  const std::string text = input.expandedRest(kLongestLog);
  const LogFile log = openLog(text);
  const auto expected = scanSessions(text, options.trunkLongUsernames);
  for (const std::size_t atOnce : {options.blockSize, blockSize}) {
    options.blockSize = atOnce;
    compare(findSessions(log, options), expected, atOnce);
  }
  return 0;
}
