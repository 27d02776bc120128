#include "classic/tools/short_info.h"

#include <gtest/gtest.h>

#include "tests/support/memory_files.h"

namespace quorvel::test {
namespace {

TEST(ShortInfo, KeepsItsColumnsForManyLinesAndLongValues) {
  MemoryFiles files;
  files.put("table.txt", std::string(7000, 'o'));  // is replaced
  const UserAct session{7, "two\r\nlines" + std::string(40, 'x'), "(000012)", "", "", "", "", 1, 2};
  auto table = ShortInfoTable::create(files, "table.txt", ShortInfoChoice().set(0).set(4));
  table.value().WriteShortInfoHeader("/logs/a.log", {"2005-03-01", "10:15:02"});
  std::string expected =
      "Log:       /logs/a.log\r\nProcessed: 2005-03-01 10:15:02\r\n\r\nName" + std::string(30, ' ') + "No       \r\n";
  for (int i = 0; i < 7000; ++i) {
    table.value().WriteShortInfoLine(session);
    expected += "two  lines" + std::string(24, 'x') + "(000012) \r\n";
  }
  EXPECT_TRUE(table.value().flush().isOk());
  EXPECT_EQ(files.content("table.txt"), expected);
}

}  // namespace
}  // namespace quorvel::test
