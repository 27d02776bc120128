// Lines of a file by number, and texts found in it.
#include <gtest/gtest.h>

#include <atomic>

#include "log/line_index.h"
#include "log/line_walk.h"
#include "log/text.h"
#include "log/text_find.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

std::unique_ptr<File> fileOf(const TempFolder& folder, std::string_view text) {
  return std::move(systemFiles().open(folder.write("a.log", text), OpenMode::Read).value());
}

/// Lines of several lengths, one of them longer than any block; numbered.
std::string longLog() {
  std::string text;
  for (int i = 0; i < 40'000; ++i) {
    text += "line " + std::to_string(i) + std::string(static_cast<std::size_t>(i % 97), '.');
    if (i == 20'000) text += std::string(3 << 20, 'x');
    text += i % 2 == 0 ? "\r\n" : "\n";
  }
  return text + "the last, without an end";
}

class LineIndexTest : public testing::Test {
 protected:
  void build(std::string_view text) {
    m_file = fileOf(m_folder, text);
    EXPECT_TRUE(index.build(*m_file, [](std::uint64_t) { return true; }).isOk());
  }
  std::vector<IndexedLine> lines(std::uint64_t number, std::size_t count) {
    return index.lines(*m_file, number, count).value();
  }
  std::uint64_t lineAt(std::uint64_t offset) { return index.lineAt(*m_file, offset).value(); }

  LineIndex index;

 private:
  TempFolder m_folder;
  std::unique_ptr<File> m_file;
};

TEST_F(LineIndexTest, EveryLineIsFoundByItsNumberAndByEachOfItsEnds) {
  const std::string log = longLog();
  build(log);
  ASSERT_EQ(index.lineCount(), 40'001U);
  std::uint64_t start = 0;
  for (std::uint64_t number = 0; number <= 40'000; ++number) {
    const std::size_t end = std::min(log.find('\n', start), log.size() - 1);
    if (number % 997 == 0 || (number > 19'998 && number < 20'003) || number == 40'000) {
      const auto found = lines(number, 1);
      ASSERT_EQ(found.size(), 1U);
      EXPECT_EQ(found[0].offset, start);
      std::string text = log.substr(start, end - start + (number == 40'000 ? 1 : 0));
      if (text.ends_with('\r')) text.pop_back();
      EXPECT_EQ(found[0].text, text.substr(0, LineIndex::kLongestText)) << number;
      EXPECT_EQ(lineAt(start), number);
      EXPECT_EQ(lineAt(end), number);
    }
    start = end + 1;
  }
  EXPECT_EQ(lineAt(UINT64_MAX - 1), 40'000U);
  EXPECT_EQ(lines(39'999, 10).size(), 2U);
  EXPECT_TRUE(lines(40'001, 1).empty());
}

TEST_F(LineIndexTest, AnEmptyFileHasNoLines) {
  build("");
  EXPECT_EQ(index.lineCount(), 0U);
  EXPECT_TRUE(lines(0, 5).empty());
  EXPECT_EQ(lineAt(0), 0U);
}

TEST(WalkLinesTest, BeginsAndEndsWhereItIsTold) {
  const TempFolder folder;
  const auto file = fileOf(folder, "one\ntwo\r\nthree");
  std::string walked;
  const std::atomic<bool> isCancelled = false;
  const auto take = [&walked](std::uint64_t offset, std::string_view line) {
    walked += std::to_string(offset) + std::string(line) + ' ';
    return true;
  };
  EXPECT_TRUE(walkLines(*file, 4, 9, isCancelled, take).isOk());
  EXPECT_TRUE(walkLines(*file, 9, 100, isCancelled, take).isOk());
  EXPECT_EQ(walked, "4two 9three ");
}

TEST(TextFinderTest, FindsWhatAPlainSearchFinds) {
  const std::string text = "aAbABabcABCabcd.ABCD abc\xE4";
  for (const std::string wanted :
       {"a", "abc", "abcd", "bA", "ABC", "cd.a", "\xC4", "zzz", "abcdabcdabcdabcdabcdabcdabcd"}) {
    const TextFinder finder(wanted);
    std::vector<std::size_t> found;
    for (std::size_t at = finder.find(text); at != std::string::npos; at = finder.find(text, at + 1))
      found.push_back(at);
    std::vector<std::size_t> expected;
    for (std::size_t at = findFolded(text, wanted); at != std::string::npos; at = findFolded(text, wanted, at + 1))
      expected.push_back(at);
    EXPECT_EQ(found, expected) << wanted;
  }
}

TEST(FindTextTest, HitsAcrossBlocksAreFoundOnceAndOnlyInTheirRange) {
  const TempFolder folder;
  constexpr std::size_t kBlock = 1 << 20;
  std::string text(3 * kBlock, '-');
  text.replace(kBlock - 5, 9, "needle-ne");
  text.replace(0, 6, "Needle");
  text.replace(2 * kBlock - 3, 6, "needle");
  text.replace(3 * kBlock - 6, 6, "NEEDLE");
  const auto file = fileOf(folder, text);
  const auto hits = [&file](std::uint64_t from, std::uint64_t to) {
    std::vector<std::uint64_t> found;
    const auto add = [&found](std::uint64_t at) { return found.push_back(at), true; };
    EXPECT_TRUE(findText(*file, from, to, TextFinder("needle"), add, [](std::uint64_t) { return true; }).isOk());
    return found;
  };
  EXPECT_EQ(hits(0, text.size()), (std::vector<std::uint64_t>{0, kBlock - 5, 2 * kBlock - 3, 3 * kBlock - 6}));
  EXPECT_EQ(hits(1, kBlock - 5), std::vector<std::uint64_t>());
  EXPECT_EQ(hits(kBlock - 5, 2 * kBlock - 3), std::vector<std::uint64_t>{kBlock - 5});
}

}  // namespace
}  // namespace quorvel::test
