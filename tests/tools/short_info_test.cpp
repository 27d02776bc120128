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
  const std::string expected = padded("alice", 34) + padded("10.0.0.5", 18) + padded("Mon 05Mar01 10:15:02", 40) +
                               padded("NOT_LOGGED_OUT", 22) + padded("(000012)", 9) + padded("71", 13) +
                               padded("3", 10) + padded("9", 10) + "\r\n";
  const std::string names = padded("Name", 34) + padded("IP", 18) + padded("Logon", 40) + padded("Logoff", 22) +
                            padded("No", 9) + padded("Pos", 13) + padded("LogonNo", 10) + padded("TreeIndex", 10) +
                            "\r\n";
  EXPECT_EQ(table(all, {session}), head + names + expected);
}

TEST_F(ShortInfo, LeavesOutColumnsThatAreOff) {
  EXPECT_EQ(table(none, {session}), head + "\r\n\r\n");
  EXPECT_EQ(table(ShortInfoChoice().set(4).set(6), {session}), head + "No       LogonNo   \r\n(000012) 3         \r\n");
}

TEST_F(ShortInfo, CutsLongValuesAndKeepsOneLinePerSession) {
  UserAct record = session;
  record.Name = "two\r\nlines" + std::string(40, 'x');
  EXPECT_EQ(table(ShortInfoChoice().set(0), {record}),
            head + padded("Name", 34) + "\r\n" + "two  lines" + std::string(24, 'x') + "\r\n");
}

TEST_F(ShortInfo, ReplacesAnExistingFile) {
  folder.write("table.txt", std::string(5000, 'o'));
  EXPECT_EQ(table(none, {}), head + "\r\n");
}

TEST_F(ShortInfo, WritesManySessionsInWholeLines) {
  const std::size_t sessions = 5000;
  const std::string text = table(all, std::vector<UserAct>(sessions, session));
  EXPECT_EQ(text.size(), head.size() + (sessions + 1) * (156 + 2));
}

TEST_F(ShortInfo, NamesTheFileThatCannotBeMade) {
  const auto table = ShortInfoTable::create(systemFiles(), folder / "missing" / "table.txt", all);
  ASSERT_FALSE(table.isOk());
  EXPECT_EQ(table.error().file, folder / "missing" / "table.txt");
}

}  // namespace
}  // namespace quorvel::test
