#include "core/log_file.h"

#include <gtest/gtest.h>

#include "tests/support/memory_log.h"
#include "tests/support/temp_folder.h"

namespace quorvel {
namespace {

TEST(LogFile, KnowsHowItsFirstLineEnds) {
  const std::string longLine(64 * 1024 - 1, 'x');
  const std::pair<std::string, char> cases[] = {
      {"", '\r'},       {"no end", '\r'},          {"a\r\nb\n", '\r'},      {"a\nb\r\n", '\n'},
      {"\n", '\r'},     {"\na\r\nb\n", '\r'},      {"\n\na\r\n", '\n'},     {"\r\n", '\r'},
      {"a\rb\n", '\n'}, {longLine + "\r\n", '\r'}, {longLine + "x\n", '\n'}};
  for (const auto& [text, end] : cases)
    EXPECT_EQ(test::openLog(text).lineEnd(), end) << text.substr(0, 20) << ", " << text.size() << " bytes";
}

TEST(LogFile, ReadsUpToTheLengthItHadWhenOpened) {
  const test::TempFolder folder;
  const LogFile log = std::move(LogFile::open(systemFiles(), folder.write("a.log", "0123456789")).value());
  const auto readAt = [&log](LogPosition position) {
    std::string buffer(8, '?');
    buffer.resize(log.readAt(position, buffer).value());
    return buffer;
  };
  folder.write("a.log", "0123456789appended");
  EXPECT_EQ(log.length(), 10);
  EXPECT_EQ(readAt(5) + '|' + readAt(11), "456789|");
  folder.write("a.log", "012");  // cut by its server meanwhile
  EXPECT_EQ(readAt(1), "012");
  EXPECT_EQ(LogFile::open(systemFiles(), folder / "none.log").error().code, ErrorCode::FileNotFound);
  EXPECT_EQ(LogFile::open(systemFiles(), folder.path()).error().code, ErrorCode::PathFileAccess);
}

}  // namespace
}  // namespace quorvel
