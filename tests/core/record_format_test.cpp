#include "core/record_format.h"

#include <gtest/gtest.h>

#include "tests/support/records.h"

namespace quorvel {
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

}  // namespace
}  // namespace quorvel
