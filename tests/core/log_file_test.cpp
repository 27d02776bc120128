#include "core/log_file.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/support/memory_log.h"
#include "tests/support/temp_folder.h"

namespace quorvel {
namespace {

TEST(LogFile, KnowsHowItsFirstLineEnds) {
  const std::string longLine(64 * 1024 - 1, 'x');
  const std::pair<std::string, char> cases[] = {
      {"", '\r'},     {"no end", '\r'}, {"a\r\nb\n", '\r'},        {"a\nb\r\n", '\n'},
      {"\r\n", '\r'}, {"a\rb\n", '\n'}, {longLine + "\r\n", '\r'}, {longLine + "x\n", '\n'}};
  for (const auto& [text, end] : cases)
    EXPECT_EQ(test::openLog(text).lineEnd(), end) << text.substr(0, 20) << ", " << text.size() << " bytes";
}

TEST(LogFile, ReadsUpToTheLengthItHadWhenOpened) {
  const test::TempFolder folder;
  const auto path = folder.write("a.log", "0123456789");
  const LogFile log = std::move(LogFile::open(systemFiles(), path).value());
  folder.write("a.log", "0123456789appended");
  std::array<char, 8> buffer{};
  EXPECT_EQ(log.length(), 10);
  EXPECT_EQ(log.readAt(5, buffer).value(), 6u);
  EXPECT_EQ(std::string(buffer.data(), 6), "456789");
  EXPECT_EQ(log.readAt(11, buffer).value(), 0u);
  folder.write("a.log", "012");  // cut by its server meanwhile
  EXPECT_EQ(log.readAt(1, buffer).value(), 3u);
  EXPECT_EQ(LogFile::open(systemFiles(), folder / "none.log").error().code, ErrorCode::FileNotFound);
  EXPECT_EQ(LogFile::open(systemFiles(), folder.path()).error().code, ErrorCode::PathFileAccess);
}

}  // namespace
}  // namespace quorvel
