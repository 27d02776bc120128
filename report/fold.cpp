#include "report/fold.h"

#include <cstdint>

namespace quorvel {
namespace {

/// The small letter of a character of two bytes (U+0080 to U+07FF).
unsigned fold(unsigned c) {
  if ((c >= 0xC0 && c <= 0xDE && c != 0xD7) || (c >= 0x391 && c <= 0x3AB && c != 0x3A2) || (c >= 0x410 && c <= 0x42F))
    return c + 0x20;
  if (c >= 0x400 && c <= 0x40F) return c + 0x50;
  if (c == 0x178) return 0xFF;
  const bool evenIsCapital = (c >= 0x100 && c <= 0x137 && c != 0x130) || (c >= 0x14A && c <= 0x177) ||
                             (c >= 0x460 && c <= 0x481) || (c >= 0x48A && c <= 0x4BF);
  const bool oddIsCapital = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
  if (evenIsCapital && c % 2 == 0) return c + 1;
  if (oddIsCapital && c % 2 == 1) return c + 1;
  return c;
}

}  // namespace

std::string foldUtf8(std::string_view text) {
  std::string folded(text);
  for (std::size_t i = 0; i < folded.size(); ++i) {
    const auto byte = static_cast<unsigned char>(folded[i]);
    if (byte >= 'A' && byte <= 'Z') {
      folded[i] = static_cast<char>(byte + 0x20);
    } else if ((byte & 0xE0) == 0xC0 && i + 1 < folded.size()) {
      const unsigned c = fold((byte & 0x1Fu) << 6 | (static_cast<unsigned char>(folded[i + 1]) & 0x3Fu));
      folded[i] = static_cast<char>(0xC0 | c >> 6);
      folded[++i] = static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return folded;
}

}  // namespace quorvel
