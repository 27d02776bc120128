// Shared by the variants of byte_scan for one instruction set each. Each includes it with a vector type of its own,
// in an unnamed namespace, so that no code made for one set is used on a machine without it.
//
// A vector type V offers: kWidth bytes, load(const char*), eq(char), operator&, operator|, lower() (bit 5 set), and
// mask() with one bit for each byte that is not zero.

#include <bit>
#include <cstddef>
#include <cstdint>

namespace {

template <typename V>
struct SessionEvents {
  static auto test(V a, V b, V c) {
    const V letter = c.lower();
    const V event = a.eq(')') & (letter.eq('u') | letter.eq('c') | letter.eq('q') | letter.eq('5') | letter.eq('a'));
    return ((event | (a.eq('-') & letter.eq('s'))) & b.eq(' ')).mask();
  }
};

template <typename V>
struct SessionLines {
  static auto test(V a, V b, V c) {
    return (a.eq(')') | a.eq('\n') | (a.eq('-') & b.eq(' ') & c.lower().eq('s'))).mask();
  }
};

template <typename V>
struct Transfers {
  static auto test(V a, V b, V c) {
    const V second = (b.eq('S') | b.eq('R')) & c.eq('e');
    return (a.eq(' ') & (second | (b.eq('E') & c.eq('r')))).mask();
  }
};

/// Writes the hits in data[0, count) to out, which has room for count + V::kWidth of them; returns their number.
template <template <typename> class Test, typename V>
std::size_t scan(const char* data, std::size_t count, std::uint32_t* out) {
  std::uint32_t* next = out;
  for (std::size_t at = 0; at < count; at += V::kWidth) {
    auto hits = Test<V>::test(V::load(data + at), V::load(data + at + 1), V::load(data + at + 2));
    for (; hits != 0; hits &= hits - 1) {
      *next++ = static_cast<std::uint32_t>(at) + static_cast<std::uint32_t>(std::countr_zero(hits));
    }
  }
  while (next != out && next[-1] >= count)
    --next;
  return static_cast<std::size_t>(next - out);
}

}  // namespace
