#include "tools/short_info.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

class ShortInfo : public ::testing::Test {
 protected:
  std::string table(ShortInfoChoice columns, const std::vector<UserAct>& records) {
    auto table = ShortInfoTable::create(systemFiles(), folder / "table.txt", columns);
    EXPECT_TRUE(table.isOk());
    table.value().WriteShortInfoHeader("/logs/a.log", {"2005-03-01", "10:15:02"});
    for (const UserAct& record : records)
      table.value().WriteShortInfoLine(record);
    EXPECT_TRUE(table.value().flush().isOk());
    return folder.read("table.txt");
  }

  TempFolder folder;
  const std::string head = "Log:       /logs/a.log\r\nProcessed: 2005-03-01 10:15:02\r\n\r\n";
  const ShortInfoChoice none;
  const ShortInfoChoice all = ShortInfoChoice().set();
  const UserAct session{71, "alice", "(000012)", "10.0.0.5", "connect", "Mon 05Mar01 10:15:02", "NOT_LOGGED_OUT", 3, 9};
};

std::string padded(std::string text, std::size_t width) {
  text.resize(width, ' ');
  return text;
}

TEST_F(ShortInfo, WritesEveryColumnAtItsWidth) {
  constexpr std::size_t kWidths[] = {34, 18, 40, 22, 9, 13, 10, 10};
  const char* const names[] = {"Name", "IP", "Logon", "Logoff", "No", "Pos", "LogonNo", "TreeIndex"};
  const char* const values[] = {"alice", "10.0.0.5", "Mon 05Mar01 10:15:02", "NOT_LOGGED_OUT", "(000012)", "71",
                                "3",     "9"};
  std::string nameLine, valueLine;
  for (std::size_t i = 0; i < std::size(kWidths); ++i) {
    nameLine += padded(names[i], kWidths[i]);
    valueLine += padded(values[i], kWidths[i]);
  }
  std::string lines;
  for (int i = 0; i < 5000; ++i)
    lines += valueLine + "\r\n";
  EXPECT_EQ(table(all, std::vector(5000, session)), head + nameLine + "\r\n" + lines);
}

TEST_F(ShortInfo, CutsLongValuesAndLeavesOutColumnsThatAreOff) {
  UserAct record = session;
  record.Name = "two\r\nlines" + std::string(40, 'x');
  folder.write("table.txt", std::string(5000, 'o'));  // replaced
  EXPECT_EQ(table(ShortInfoChoice().set(0).set(4), {record}),
            head + padded("Name", 34) + "No       \r\n" + "two  lines" + std::string(24, 'x') + "(000012) \r\n");
  EXPECT_EQ(table(none, {session}), head + "\r\n\r\n");
}

TEST_F(ShortInfo, NamesTheFileThatCannotBeMade) {
  const auto table = ShortInfoTable::create(systemFiles(), folder / "missing" / "table.txt", all);
  EXPECT_EQ(table.error().file, folder / "missing" / "table.txt");
}

}  // namespace
}  // namespace quorvel::test
