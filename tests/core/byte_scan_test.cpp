#include "core/byte_scan.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "core/byte_scan_variants.h"

namespace quorvel::test {
namespace {

/// What each scan looks for, one byte at a time.
bool isHit(ScanFor what, std::string_view at) {
  const char letter = static_cast<char>(at[2] | 0x20);
  const bool isServerStart = at.starts_with("- ") && letter == 's';
  if (what == ScanFor::SessionLines) return isServerStart || at[0] == ')' || at[0] == '\n';
  if (what == ScanFor::SessionEvents)
    return isServerStart || (at.starts_with(") ") && std::string_view("ucq5a").find(letter) != std::string_view::npos);
  return at.starts_with(" Se") || at.starts_with(" Re") || at.starts_with(" Er");
}

TEST(ByteScan, FindsWhatOneByteAtATimeFinds) {
  // Few different bytes, so that hits lie close together, also across the ends of what is read at once.
  constexpr std::string_view kBytes = ")- SsEeRrUuQq5Aaxc\n";
  const ByteScanVariant portable = portableByteScan();
  const ByteScanFunction portableScans[] = {portable.sessionEvents, portable.sessionLines, portable.transfers};
  std::mt19937 random(7);
  for (const ScanFor what : {ScanFor::SessionEvents, ScanFor::SessionLines, ScanFor::Transfers}) {
    for (const std::size_t count : {0u, 1u, 15u, 16u, 31u, 32u, 33u, 63u, 200u, 4095u, 4096u, 4097u, 20000u}) {
      std::string bytes(count + kScanSlack, ')');
      for (std::size_t i = 0; i < count; ++i)
        bytes[i] = kBytes[random() % kBytes.size()];
      std::vector<std::uint32_t> expected;
      for (std::uint32_t i = 0; i < count; ++i)
        if (isHit(what, std::string_view(bytes).substr(i))) expected.push_back(i);
      std::vector<std::uint32_t> found;
      scanBytes(what, bytes.data(), count, found);
      EXPECT_EQ(found, expected) << count << " bytes";
      found.assign(count + kScanSlack, 0);
      found.resize(portableScans[static_cast<std::size_t>(what)](bytes.data(), count, found.data()));
      EXPECT_EQ(found, expected) << count << " bytes, on a machine without vectors";
    }
  }
}

}  // namespace
}  // namespace quorvel::test
