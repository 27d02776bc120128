// Tools that write and read files.
#include <gtest/gtest.h>

#include "tests/support/memory_files.h"
#include "tools/go_to_position.h"
#include "tools/short_info.h"

namespace quorvel::test {
namespace {

TEST(ShortInfo, KeepsItsColumnsForManyLinesAndLongValues) {
  MemoryFiles files;
  files.put("table.txt", std::string(5000, 'o'));  // is replaced
  const UserAct session{7, "two\r\nlines" + std::string(40, 'x'), "(000012)", "", "", "", "", 1, 2};
  auto table = ShortInfoTable::create(files, "table.txt", ShortInfoChoice().set(0).set(4));
  table.value().WriteShortInfoHeader("/logs/a.log", {"2005-03-01", "10:15:02"});
  std::string expected =
      "Log:       /logs/a.log\r\nProcessed: 2005-03-01 10:15:02\r\n\r\nName" + std::string(30, ' ') + "No       \r\n";
  for (int i = 0; i < 5000; ++i) {
    table.value().WriteShortInfoLine(session);
    expected += "two  lines" + std::string(24, 'x') + "(000012) \r\n";
  }
  EXPECT_TRUE(table.value().flush().isOk());
  EXPECT_EQ(files.content("table.txt"), expected);
}

// What is shown of a position is compared with the log's own bytes in the fuzz target of texts.
TEST(GoToPosition, TakesWholeNumbersOf32BitsAndALogThatIsThere) {
  MemoryFiles files;
  files.put("a.log", "one line");
  for (const char* position : {" 5000 ", "2147483647", "-2147483648"})
    EXPECT_EQ(textAroundPosition(files, "a.log", position), "\r\n\r\n") << position;
  for (const char* position : {"", "abc", "12x", "5000.5", "2147483648", "-2147483649", "99999999999999999999"})
    EXPECT_EQ(textAroundPosition(files, "a.log", position), std::nullopt) << position;
  EXPECT_EQ(textAroundPosition(files, "missing.log", "5000"), std::nullopt);
}

}  // namespace
}  // namespace quorvel::test
