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
  [[nodiscard]] std::string bytes() const { return m_folder.read("users.qva"); }

  test::TempFolder m_folder;
  std::filesystem::path m_path = m_folder / "users.qva";
  std::vector<std::string> m_failures;
};

TEST_F(UsersFileTest, ReadsBackWhatWasWritten) {
  constexpr std::int32_t kCount = 3000;  // more than one batch, more than one block
  std::vector<UserAct> records;
  for (std::int32_t number = 1; number <= kCount; ++number)
    records.push_back(numbered(number, std::string("user").append(std::to_string(number))));
  write(records);
  UsersFile file = open();
  ASSERT_EQ(file.recordCount(), kCount);
  EXPECT_EQ(decodeRecord(std::string_view(bytes()).substr(recordOffset(kCount))), records.back()) << "a short slot";
  for (const std::int32_t number : {1, 2, 512, 513, 2048, 2049, kCount, 7})
    EXPECT_EQ(file.read(number), records[static_cast<std::size_t>(number - 1)]);
  EXPECT_FALSE(file.read(0));
  EXPECT_FALSE(file.read(kCount + 1));
  EXPECT_TRUE(m_failures.empty());
}

TEST_F(UsersFileTest, UsesUpTheNumberOfARecordThatIsTooLong) {
  write({numbered(1), numbered(2, std::string(100, 'n')), numbered(3), numbered(4, std::string(200, 'n'))});
  EXPECT_EQ(m_failures, (std::vector<std::string>{"2: 59", "4: 59"}));
  UsersFile file = open();
  ASSERT_EQ(file.recordCount(), 3);
  EXPECT_EQ(file.read(2), UserAct());
  EXPECT_EQ(file.read(3), numbered(3));
}

TEST_F(UsersFileTest, ChangesATreeIndexAndNothingElse) {
  write({numbered(1), numbered(2), numbered(3)});
  std::string expected = bytes();
  expected.resize(recordOffset(4) - 10, '#');  // whatever stands behind a record stays
  for (const std::int32_t number : {1, 2})
    expected.replace(recordOffset(number + 1) - 5, 5, "#####");
  m_folder.write("users.qva", expected);
  {
    UsersFile file = open(OpenMode::ReadWrite);
    file.setTreeIndex(2, 70'000);
    EXPECT_TRUE(file.flush().isOk());
  }
  std::array<char, kRecordSize> slot{};
  UserAct changed = numbered(2);
  changed.TreeIndex = 70'000;
  const std::size_t size = *encodeRecord(changed, slot);
  expected.replace(recordOffset(2), size, slot.data(), size);
  EXPECT_EQ(bytes(), expected);
}

TEST_F(UsersFileTest, ReadsADamagedSlotAsAnEmptyRecord) {
  write({numbered(1), numbered(2), numbered(3)});
  std::string damaged = bytes();
  damaged.replace(recordOffset(2) + 4, 2, "\xFF\xFF");
  damaged.resize(recordOffset(3) + 9);
  m_folder.write("users.qva", damaged);
  UsersFile file = open(OpenMode::ReadWrite);
  ASSERT_EQ(file.recordCount(), 3);
  EXPECT_EQ(file.read(1), numbered(1));
  EXPECT_EQ(file.read(2), UserAct());
  EXPECT_EQ(file.read(3), UserAct());
  file.setTreeIndex(2, 5);
  EXPECT_TRUE(file.flush().isOk());
  EXPECT_EQ(bytes(), damaged) << "a damaged slot is left alone";
}

TEST_F(UsersFileTest, IsMissedWhenItIsNotThere) {
  EXPECT_EQ(UsersFile::open(systemFiles(), m_path).error().code, ErrorCode::FileNotFound);
  write({});
  EXPECT_FALSE(m_folder.has("users.qva")) << "no record, no file";
}

}  // namespace
}  // namespace quorvel
