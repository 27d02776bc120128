// Sixteen bytes at a time where the compiler's basic instruction set allows it, else eight.
#include "log/byte_scan_variants.h"

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#endif

namespace {

#if defined(__SSE2__) || defined(_M_X64)

struct Vector {
  static constexpr std::size_t kWidth = 16;
  __m128i bytes;

  static Vector load(const char* from) { return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(from))}; }
  Vector eq(char c) const { return {_mm_cmpeq_epi8(bytes, _mm_set1_epi8(c))}; }
  Vector lower() const { return {_mm_or_si128(bytes, _mm_set1_epi8(0x20))}; }
  std::uint32_t mask() const { return static_cast<std::uint32_t>(_mm_movemask_epi8(bytes)); }
  friend Vector operator&(Vector a, Vector b) { return {_mm_and_si128(a.bytes, b.bytes)}; }
  friend Vector operator|(Vector a, Vector b) { return {_mm_or_si128(a.bytes, b.bytes)}; }
};

#else

struct Vector {
  static constexpr std::size_t kWidth = 8;
  unsigned char bytes[kWidth];

  static Vector load(const char* from) {
    return apply([from](std::size_t i) { return static_cast<unsigned char>(from[i]); });
  }
  Vector eq(char c) const {
    return apply([this, c](std::size_t i) { return bytes[i] == static_cast<unsigned char>(c) ? 0xFF : 0; });
  }
  Vector lower() const {
    return apply([this](std::size_t i) { return bytes[i] | 0x20; });
  }
  std::uint32_t mask() const {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < kWidth; ++i)
      bits |= std::uint32_t{bytes[i] != 0} << i;
    return bits;
  }
  friend Vector operator&(Vector a, Vector b) {
    return apply([&](std::size_t i) { return a.bytes[i] & b.bytes[i]; });
  }
  friend Vector operator|(Vector a, Vector b) {
    return apply([&](std::size_t i) { return a.bytes[i] | b.bytes[i]; });
  }

  template <typename ByteAt>
  static Vector apply(ByteAt byteAt) {
    Vector result;
    for (std::size_t i = 0; i < kWidth; ++i)
      result.bytes[i] = static_cast<unsigned char>(byteAt(i));
    return result;
  }
};

#endif

}  // namespace

#include "log/byte_scan_kernel.h"

namespace quorvel {

ByteScanVariant portableByteScan() {
  return {scan<SessionEvents, Vector>, scan<SessionLines, Vector>, scan<Transfers, Vector>};
}

}  // namespace quorvel
