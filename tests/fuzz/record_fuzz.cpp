// Any bytes as a users file: what can be read can be written and read again, and setting a tree index changes no more.
#include "classic/find/record_format.h"
#include "classic/find/users_file.h"
#include "tests/fuzz/fuzz_input.h"

namespace quorvel::test {
namespace {

void checkSlot(std::string_view slot) {
  const auto record = decodeRecord(slot);
  std::string written(slot);
  require(record.has_value() == encodeTreeIndex(7, written), "a record has room for its tree index");
  require(decodeTreeIndex(written) == (record ? std::optional(7) : std::nullopt),
          "a tree index reads as it was written");
  if (!record) return;
  require(slot.starts_with(encodeRecord(*record)), "a record is written as it was read");
}

void checkFile(MemoryFiles& files, std::int32_t newIndex) {
  auto opened = UsersFile::open(files, "users.qva", OpenMode::ReadWrite);
  require(opened.isOk(), "any file can be opened");
  UsersFile& file = opened.value();
  for (std::int32_t n = 1; n <= file.recordCount(); ++n) {
    const UserAct* const read = file.read(n);
    require(read != nullptr, "every slot can be read");
    UserAct record = *read;
    const auto treeIndex = file.treeIndex(n);
    file.setTreeIndex(n, newIndex);
    if (treeIndex) record.TreeIndex = newIndex;
    require(*file.read(n) == record, "the tree index alone changes");
  }
  require(!file.read(0) && !file.read(file.recordCount() + 1), "nothing lies beside the records");
  require(file.flush().isOk(), "a tree index can be written");
}

void checkWriter(FuzzInput& input) {
  constexpr std::size_t kSlotSizes[] = {kRecordSize, kLargeSlotSize, kLargestSlotSize};
  const std::size_t slotSize = kSlotSizes[input.byte() % 3];
  const bool isLarge = slotSize != kRecordSize;
  const std::int64_t low = static_cast<std::int32_t>(input.number(4));
  const std::int64_t position = isLarge ? low * 0x100000001 : low;
  const UserAct record{position, input.text(), input.text(), input.text(), input.text(), input.text(), input.text(), 3,
                       0};
  const std::size_t texts = record.Name.size() + record.NumberInLog.size() + record.IP.size() +
                            record.ConnectTime.size() + record.LogonTime.size() + record.LogoffTime.size();
  MemoryFiles files;
  const std::int32_t firstRecord = input.flag() ? 3 : 1;
  std::int32_t failed = 0;
  {
    UsersFileWriter writer(
        files, "users.qva", [&](const UserAct&, std::int32_t n, const Error&) { failed = n; }, slotSize);
    writer.WriteSessionRecord(encodeRecord(record, slotSize), firstRecord);
    writer.WriteSessionRecord(encodeRecord(UserAct(), slotSize), 4);
  }
  auto opened = UsersFile::open(files, "users.qva");
  require(opened.isOk() && opened.value().recordCount() == 4, "every number is used up");
  const bool isTooLong = kRecordOverhead + (isLarge ? 4 : 0) + texts > recordRoom(slotSize);
  require(failed == (isTooLong ? firstRecord : 0), "a slot holds as much as it has room for");
  require(*opened.value().read(firstRecord) == (isTooLong ? UserAct() : record), "a record reads as it was written");
}

}  // namespace

void runTarget(FuzzInput input) {
  const auto newIndex = static_cast<std::int32_t>(input.number(4));
  MemoryFiles files;
  files.put("users.qva", input.rest());
  const std::string_view bytes = input.rest();
  for (std::size_t at = 0; at < bytes.size(); at += kRecordSize)
    checkSlot(bytes.substr(at, kRecordSize));
  for (std::size_t length = 0; length < std::min(bytes.size(), kRecordSize); ++length)
    checkSlot(bytes.substr(0, length));
  checkFile(files, newIndex);
  require(files.content("users.qva").size() == bytes.size(), "the file keeps its length");
  checkWriter(input);
}

}  // namespace quorvel::test
