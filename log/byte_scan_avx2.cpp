// Compiled for machines with AVX2; nothing in here may be called on others.
#include "log/byte_scan_variants.h"

#include <immintrin.h>

namespace {

struct Vector {
  static constexpr std::size_t kWidth = 32;
  __m256i bytes;

  static Vector load(const char* from) { return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(from))}; }
  Vector eq(char c) const { return {_mm256_cmpeq_epi8(bytes, _mm256_set1_epi8(c))}; }
  Vector lower() const { return {_mm256_or_si256(bytes, _mm256_set1_epi8(0x20))}; }
  std::uint32_t mask() const { return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes)); }
  friend Vector operator&(Vector a, Vector b) { return {_mm256_and_si256(a.bytes, b.bytes)}; }
  friend Vector operator|(Vector a, Vector b) { return {_mm256_or_si256(a.bytes, b.bytes)}; }
};

}  // namespace

#include "log/byte_scan_kernel.h"

namespace quorvel {

ByteScanVariant avx2ByteScan() {
  return {scan<SessionEvents, Vector>, scan<SessionLines, Vector>, scan<Transfers, Vector>};
}

}  // namespace quorvel
