#include "core/byte_scan.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "core/byte_scan_variants.h"

namespace quorvel::test {
namespace {

/// What each scan looks for, one byte at a time.
bool isHit(ScanFor what, const char* at) {
  const char letter = static_cast<char>(at[2] | 0x20);
  const bool isServerStart = at[0] == '-' && at[1] == ' ' && letter == 's';
  switch (what) {
    case ScanFor::SessionEvents:
      return isServerStart ||
             (at[0] == ')' && at[1] == ' ' && std::string_view("ucq5a").find(letter) != std::string_view::npos);
    case ScanFor::SessionLines:
      return isServerStart || at[0] == ')';
    case ScanFor::Transfers:
      break;
  }
  const std::string_view start(at, 3);
  return start == " Se" || start == " Re" || start == " Er";
}

class ByteScanTest : public testing::TestWithParam<ScanFor> {
 protected:
  /// Text of few different bytes, so that hits lie close together, also across the ends of what is read at once.
  static std::string text(std::mt19937& random, std::size_t count) {
    constexpr std::string_view kBytes = ")- SsEeRrUuQq5Aaxc";
    std::string result(count + kScanSlack, ')');
    for (std::size_t i = 0; i < count; ++i)
      result[i] = kBytes[random() % kBytes.size()];
    return result;
  }

  static std::vector<std::uint32_t> expected(std::string_view text, std::size_t count) {
    std::vector<std::uint32_t> offsets;
    for (std::uint32_t i = 0; i < count; ++i) {
      if (isHit(GetParam(), text.data() + i)) offsets.push_back(i);
    }
    return offsets;
  }
};

TEST_P(ByteScanTest, FindsWhatOneByteAtATimeFinds) {
  std::mt19937 random(7);
  std::vector<std::uint32_t> found;
  for (const std::size_t count :
       std::initializer_list<std::size_t>{0, 1, 15, 16, 31, 32, 33, 63, 200, 4095, 4096, 4097, 20000}) {
    const std::string bytes = text(random, count);
    scanBytes(GetParam(), bytes.data(), count, found);
    EXPECT_EQ(found, expected(bytes, count)) << count << " bytes";
  }
}

TEST_P(ByteScanTest, FindsTheSameOnEveryMachine) {
  std::mt19937 random(8);
  constexpr std::size_t kCount = 1000;
  const ByteScanVariant variant = portableByteScan();
  const ByteScanFunction scans[] = {variant.sessionEvents, variant.sessionLines, variant.transfers};
  const std::string bytes = text(random, kCount);
  std::vector<std::uint32_t> found(kCount + kScanSlack);
  found.resize(scans[static_cast<std::size_t>(GetParam())](bytes.data(), kCount, found.data()));
  EXPECT_EQ(found, expected(bytes, kCount));
}

INSTANTIATE_TEST_SUITE_P(Scans, ByteScanTest,
                         testing::Values(ScanFor::SessionEvents, ScanFor::SessionLines, ScanFor::Transfers));

}  // namespace
}  // namespace quorvel::test
