#include "tools/go_to_position.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

class GoToPosition : public ::testing::Test {
 protected:
  /// A text in which every place tells where it is from: the numbers from 10000 on.
  GoToPosition() {
    for (int number = 10'000; text.size() < 12'000; ++number)
      text += std::to_string(number);
    log = folder.write("a.log", text);
  }
  std::optional<std::string> at(std::string_view position) { return textAroundPosition(systemFiles(), log, position); }
  /// Bytes [from, to] counted from 1, as they stand in the log.
  std::string bytes(std::size_t from, std::size_t to) const { return text.substr(from - 1, to - from + 1); }

  TempFolder folder;
  std::string text;
  std::filesystem::path log;
};

TEST_F(GoToPosition, ShowsTheBytesBeforeAndFromThePosition) {
  EXPECT_EQ(at(" 5000 "), bytes(4500, 4999) + "\r\n\r\n" + bytes(5000, 9499));
  for (const char* position : {"0", "1000", "1001", "-2147483648"})
    EXPECT_EQ(at(position), bytes(501, 1000) + "\r\n\r\n" + bytes(1001, 5500)) << position;
  EXPECT_EQ(at("1002"), bytes(502, 1001) + "\r\n\r\n" + bytes(1002, 5501));
  EXPECT_EQ(at("12000"), bytes(11500, 11999) + "\r\n\r\n" + bytes(12000, 12000));
  EXPECT_EQ(at("12300"), bytes(11800, 12000) + "\r\n\r\n");
  EXPECT_EQ(at("2147483647"), "\r\n\r\n");
}

TEST_F(GoToPosition, StaysSilentWhenNothingCanBeShown) {
  for (const char* position : {"", "abc", "12x", "5000.5", "2147483648", "-2147483649", "99999999999999999999"})
    EXPECT_EQ(at(position), std::nullopt) << position;
  for (const auto& path : {std::filesystem::path(), folder / "missing.log", folder.path()})
    EXPECT_EQ(textAroundPosition(systemFiles(), path, "5000"), std::nullopt) << path;
}

}  // namespace
}  // namespace quorvel::test
