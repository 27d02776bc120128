#include "core/users_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/record_format.h"
#include "tests/support/records.h"
#include "tests/support/temp_folder.h"

namespace quorvel {
namespace {

UserAct numbered(std::int32_t number, std::string name = "alice") {
  return {number * 100, std::move(name), "(000012)", "", "", "", "", number, 0};
}

class UsersFileTest : public ::testing::Test {
 protected:
  void write(const std::vector<UserAct>& records) {
    UsersFileWriter writer(systemFiles(), m_path, [this](const UserAct&, std::int32_t number, const Error& error) {
      m_failures.push_back(std::to_string(number) + ": " + std::to_string(error.number()));
    });
    for (const UserAct& record : records)
      writer.WriteSessionRecord(record, record.LogonNo);
  }
  UsersFile open(OpenMode mode = OpenMode::Read) {
    return std::move(UsersFile::open(systemFiles(), m_path, mode).value());
  }

  test::TempFolder m_folder;
  std::filesystem::path m_path = m_folder / "users.qva";
  std::vector<std::string> m_failures;
};

TEST_F(UsersFileTest, ReadsBackWhatWasWritten) {
  constexpr std::int32_t kCount = 3000;  // more than one batch, more than one block
  std::vector<UserAct> records;
  for (std::int32_t number = 1; number <= kCount; ++number)
    records.push_back(numbered(number, std::string("user").append(std::to_string(number))));
  for (const std::size_t tooLong : {5u, 3000u}) {
    auto withTooLong = records;
    withTooLong[tooLong - 1].Name.assign(200, 'n');
    (void)systemFiles().remove(m_path);
    write(withTooLong);
    UsersFile file = open();
    ASSERT_EQ(file.recordCount(), tooLong == kCount ? kCount - 1 : kCount);
    EXPECT_EQ(m_failures.back(), std::to_string(tooLong) + ": 59");
    for (const std::int32_t number : {1, 2, 512, 513, 2048, 2049, 2999, 7})
      EXPECT_EQ(file.read(number), records[static_cast<std::size_t>(number - 1)]);
    EXPECT_EQ(file.read(5), tooLong == 5 ? UserAct() : records[4]) << "its number is used up";
    EXPECT_FALSE(file.read(0) || file.read(kCount + 1));
  }
}

TEST_F(UsersFileTest, ChangesATreeIndexAndNothingElse) {
  write({numbered(1), numbered(2), numbered(3), numbered(4)});
  std::string expected = m_folder.read("users.qva");
  expected.replace(recordOffset(2) - 5, 5, "#####");  // whatever stands behind a record stays
  expected.replace(recordOffset(3) + 4, 2, "\xFF\xFF");
  expected.resize(recordOffset(4) + 9);
  m_folder.write("users.qva", expected);
  UserAct changed = numbered(1);
  changed.TreeIndex = 70'000;
  UsersFile file = open(OpenMode::ReadWrite);
  for (const std::int32_t number : {1, 3, 4})
    file.setTreeIndex(number, changed.TreeIndex);
  EXPECT_TRUE(file.flush().isOk());
  EXPECT_TRUE(encodeRecord(changed, std::span(expected).first(recordOffset(2) - 5)));
  EXPECT_EQ(m_folder.read("users.qva"), expected) << "a damaged slot and a cut one are left alone";
  ASSERT_EQ(file.recordCount(), 4);
  EXPECT_EQ(file.read(2), numbered(2));
  EXPECT_EQ(file.read(3), UserAct());
  EXPECT_EQ(file.read(4), UserAct());
}

TEST_F(UsersFileTest, IsMissedWhenItIsNotThere) {
  write({});  // no record, no file
  EXPECT_EQ(UsersFile::open(systemFiles(), m_path).error().code, ErrorCode::FileNotFound);
}

}  // namespace
}  // namespace quorvel
