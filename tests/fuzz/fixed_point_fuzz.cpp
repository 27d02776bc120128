// Byte sums: every number survives being written and read, a text is read as the C library reads it, sums add up.
#include <cmath>

#include "classic/counter/transfer_count.h"
#include "tests/fuzz/fuzz_input.h"

namespace quorvel::test {
namespace {

/// What the C library makes of text, times 10,000; not a number where it takes less than all of it.
long double scaledByLibrary(const std::string& text) {
  if (text.find_first_not_of("0123456789+-.eE \t") != std::string::npos) return NAN;  // hexadecimal, infinity
  char* end = nullptr;
  const long double value = std::strtold(text.c_str(), &end);
  if (end == text.c_str()) return NAN;
  return text.find_first_not_of(" \t", static_cast<std::size_t>(end - text.c_str())) == std::string::npos
             ? value * 10'000.0L
             : NAN;
}

}  // namespace

void runTarget(FuzzInput input) {
  const auto a = static_cast<std::int64_t>(std::uint64_t{input.number(4)} << 32 | input.number(4));
  const auto b = static_cast<std::int64_t>(input.number(4));
  require(parseFixedPoint(fixedPointText(a)) == a, "a number that was written can be read");
  std::int64_t sum = a;
  addBytes(sum, b);
  require(sum == a || fixedPointSumText(a, b) == fixedPointText(sum), "the text of a sum");

  const std::string text(input.rest().substr(0, 1024));
  const long double expected = scaledByLibrary(text);
  const auto found = parseFixedPoint(text);
  constexpr long double kLargest = 9.2233720368547e18L;
  if (found) {
    const long double librarysError = std::fabs(expected) * 1.1e-19L;  // of reading and of multiplying
    require(std::fabs(static_cast<long double>(*found) - expected) <= 0.51L + librarysError, "the number in a text");
  } else {
    require(std::isnan(expected) || std::fabs(expected) > kLargest, "a text that is no number, or a large one");
  }
}

}  // namespace quorvel::test
