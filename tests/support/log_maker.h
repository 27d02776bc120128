// Makes logs that try to catch the finder, the filters and the counter out: sessions that overlap, reuse numbers or
// never end, tokens across the ends of search blocks, odd numbers and names, logs cut anywhere.
#pragma once

#include <cstdint>
#include <string>

namespace quorvel::test {

/// The log of this seed: some 10 bytes to 400 KB, most of them small. The same seed makes the same log everywhere.
[[nodiscard]] std::string makeLog(std::uint64_t seed);

}  // namespace quorvel::test
