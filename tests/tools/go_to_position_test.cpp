#include "tools/go_to_position.h"

#include <gtest/gtest.h>

#include "tests/support/memory_files.h"

namespace quorvel::test {
namespace {

TEST(GoToPosition, ShowsTheBytesBeforeAndFromThePosition) {
  std::string text;  // every place in it tells where it is from
  for (int number = 10'000; text.size() < 12'000; ++number)
    text += std::to_string(number);
  MemoryFiles files;
  files.put("a.log", text);
  const struct {
    std::string position;
    std::size_t from, at, behind;  ///< bytes from 1
  } cases[] = {{" 5000 ", 4500, 5000, 9500},   {"0", 501, 1001, 5501},     {"1000", 501, 1001, 5501},
               {"1001", 501, 1001, 5501},      {"1002", 502, 1002, 5502},  {"-2147483648", 501, 1001, 5501},
               {"12000", 11500, 12000, 12001}, {"12300", 11800, 12001, 0}, {"2147483647", 12001, 12001, 0}};
  for (const auto& [position, from, at, behind] : cases)
    EXPECT_EQ(textAroundPosition(files, "a.log", position),
              text.substr(from - 1, at - from) + "\r\n\r\n" + text.substr(at - 1, behind - at))
        << position;
  for (const char* position : {"", "abc", "12x", "5000.5", "2147483648", "-2147483649", "99999999999999999999"})
    EXPECT_EQ(textAroundPosition(files, "a.log", position), std::nullopt) << position;
  EXPECT_EQ(textAroundPosition(files, "missing.log", "5000"), std::nullopt);
}

}  // namespace
}  // namespace quorvel::test
