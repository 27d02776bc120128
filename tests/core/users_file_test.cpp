// The users file, from the layout of its records to its writing.
#include "core/users_file.h"

#include <gtest/gtest.h>

#include <new>

#include "core/record_format.h"
#include "tests/support/memory_files.h"
#include "tests/support/records.h"

namespace quorvel::test {
namespace {

using namespace std::string_literals;

const UserAct kRecord{0x01020304, "al\xEF\0e"s, "(000012)", "10.0.0.5", "c", "", "L", 5, -2};
const std::string kBytes = "\x04\x03\x02\x01\x05\0al\xEF\0e\x08\0(000012)\x08\0"s + "10.0.0.5\x01\0c\0\0\x01\0L"s +
                           "\x05\0\0\0\xFE\xFF\xFF\xFF"s;

TEST(RecordFormat, IsLittleEndianPackedAndInFieldOrder) {
  std::string slot(kRecordSize, '#');
  EXPECT_EQ(encodeRecord(kRecord, slot), kBytes.size());
  EXPECT_EQ(slot, kBytes + std::string(kRecordSize - kBytes.size(), '#'));
  EXPECT_EQ(decodeRecord(slot), kRecord);
}

TEST(RecordFormat, HoldsAsMuchAsTheSlot) {
  std::string slot(kRecordSize, '#');
  UserAct record;
  record.Name.assign(kRecordSize - kRecordOverhead + 1, 'n');
  EXPECT_EQ(encodeRecord(record, slot), 0u);
  EXPECT_EQ(slot, std::string(kRecordSize, '#')) << "the slot is left alone";
  record.Name.pop_back();
  EXPECT_EQ(encodeRecord(record, slot), kRecordSize);
  EXPECT_EQ(decodeRecord(slot), record);
}

TEST(RecordFormat, RefusesDamage) {
  for (std::size_t length = 0; length < kBytes.size(); ++length) {
    std::string cut = kBytes.substr(0, length);
    EXPECT_FALSE(decodeRecord(cut) || encodeTreeIndex(7, cut)) << "cut at " << length;
  }
  for (const std::size_t lengthWord : {4u, 11u}) {  // of Name and of NumberInLog
    std::string damaged = kBytes;
    damaged[lengthWord + 1] = '\xFF';
    EXPECT_FALSE(decodeRecord(damaged)) << "length word at " << lengthWord;
  }
}

TEST(UsersFileWriter, TellsWhenMemoryRanOutOnTheThreadThatWrites) {
  MemoryFiles files;
  UsersFileWriter writer(files, "users.qva", [](const UserAct&, std::int32_t, const Error&) { FAIL(); });
  const auto writeMany = [&writer] {
    for (std::int32_t n = 1; n <= 10'000; ++n)
      writer.WriteSessionRecord({n, "", "", "", "", "", "", n, 0}, n);
    writer.flush();
  };
  files.arm(Fault::NoMemory, 1);
  EXPECT_THROW(writeMany(), std::bad_alloc);
  files.disarm();
  EXPECT_THROW(writer.flush(), std::bad_alloc) << "and puts no record into another one's place";
  EXPECT_TRUE(files.paths().empty());
}

}  // namespace
}  // namespace quorvel::test
