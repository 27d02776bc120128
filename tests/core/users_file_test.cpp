#include "core/users_file.h"

#include <gtest/gtest.h>

#include <new>

#include "tests/support/memory_files.h"

namespace quorvel::test {
namespace {

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
