// One variant of each scan for every instruction set; byte_scan.cpp picks one when the program starts.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quorvel {

/// Writes the hits to out, which has room for count + kScanSlack offsets, and returns their number.
using ByteScanFunction = std::size_t (*)(const char* data, std::size_t count, std::uint32_t* out);

struct ByteScanVariant {
  ByteScanFunction sessionEvents;
  ByteScanFunction sessionLines;
  ByteScanFunction transfers;
};

[[nodiscard]] ByteScanVariant portableByteScan();
/// Only to be called on a machine that has these instructions.
[[nodiscard]] ByteScanVariant avx2ByteScan();

}  // namespace quorvel
