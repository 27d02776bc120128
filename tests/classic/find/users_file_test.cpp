// The users file; that what was written can be read is told by the fuzz target of records.
#include "classic/find/users_file.h"

#include <gtest/gtest.h>

#include "classic/find/record_format.h"
#include "tests/support/memory_files.h"
#include "tests/support/records.h"

namespace quorvel::test {
namespace {

using namespace std::string_literals;

const UserAct kRecord{0x01020304, "al\xEF\0e"s, "(000012)", "10.0.0.5", "c", "", "L", 5, -2};
const std::string kBytes = "\x04\x03\x02\x01\x05\0al\xEF\0e\x08\0(000012)\x08\0"s + "10.0.0.5\x01\0c\0\0\x01\0L"s +
                           "\x05\0\0\0\xFE\xFF\xFF\xFF"s;

TEST(RecordFormat, IsLittleEndianPackedAndInFieldOrder) {
  EXPECT_EQ(encodeRecord(kRecord), kBytes);
  EXPECT_EQ(decodeRecord(kBytes + "#"), kRecord);
}

TEST(UsersFileWriter, PutsEachRecordIntoItsPlace) {
  MemoryFiles files;
  UsersFileWriter writer(files, "users.qva", [](const UserAct&, std::int32_t, const Error&) { FAIL(); });
  const auto writeMany = [&writer](std::int32_t first) {
    for (std::int32_t n = first; n < first + 10'000; ++n)
      writer.WriteSessionRecord(encodeRecord({n, "", "", "", "", "", "", n, 0}), n);
    writer.flush();
  };
  writeMany(1);
  writeMany(10'001);
  auto users = UsersFile::open(files, "users.qva");
  for (std::int32_t n = 1; n <= 20'000; ++n)
    ASSERT_EQ(users.value().read(n)->LogonNo, n);
}

}  // namespace
}  // namespace quorvel::test
