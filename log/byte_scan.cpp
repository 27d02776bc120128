#include "log/byte_scan.h"

#include "log/byte_scan_variants.h"

namespace quorvel {
namespace {

ByteScanVariant bestVariant() {
#if defined(QUORVEL_AVX2)
  if (__builtin_cpu_supports("avx2")) return avx2ByteScan();
#endif
  return portableByteScan();
}

ByteScanFunction functionFor(ScanFor what) {
  static const ByteScanVariant variant = bestVariant();
  switch (what) {
    case ScanFor::SessionEvents:
      return variant.sessionEvents;
    case ScanFor::SessionLines:
      return variant.sessionLines;
    case ScanFor::Transfers:
      break;
  }
  return variant.transfers;
}

}  // namespace

void scanBytes(ScanFor what, const char* data, std::size_t count, std::vector<std::uint32_t>& offsets) {
  constexpr std::size_t kPiece = 4096;  // keeps the room that must be there for a hit at every byte small
  const ByteScanFunction scan = functionFor(what);
  std::size_t found = 0;
  for (std::size_t at = 0; at < count; at += kPiece) {
    const std::size_t size = count - at < kPiece ? count - at : kPiece;
    if (offsets.size() < found + size + kScanSlack) offsets.resize(found + size + kScanSlack + kPiece);
    const std::size_t hits = scan(data + at, size, offsets.data() + found);
    for (std::size_t i = found; i < found + hits; ++i)
      offsets[i] += static_cast<std::uint32_t>(at);
    found += hits;
  }
  offsets.resize(found);
}

}  // namespace quorvel
