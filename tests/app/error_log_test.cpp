#include "app/error_log.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

TEST(ErrorLog, ShowsAsMuchOfANameAsIsOfUseAndIsSilentWhereItCannotWrite) {
  const TempFolder folder;
  UserAct record;
  record.Name.assign(5000, 'n');
  ErrorLog(systemFiles(), folder.path()).recordNotSaved("a.log", "users.qva", record, 4, {ErrorCode::DiskFull, {}});
  EXPECT_NE(folder.read("error.log").find("Name:              " + std::string(4096, 'n') + "\r\n"), std::string::npos);
  ErrorLog(systemFiles(), folder / "missing").errorInScan("a.log", {ErrorCode::Overflow, {}});
  EXPECT_FALSE(folder.has("missing"));
}

}  // namespace
}  // namespace quorvel::test
