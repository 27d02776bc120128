#include "app/find_users_command.h"

#include "tests/app/scanned_log.h"

namespace quorvel::test {
namespace {

TEST_F(ScannedLogTest, AScanYieldsByTheClock) {
  Pacer patient{std::chrono::hours(1)};
  EXPECT_TRUE(patient.isDue());
  CommandContext other{systemFiles(), settings, state, view, patient};
  const int yields = view.yieldCount();
  findUsers(other);
  EXPECT_EQ(view.yieldCount(), yields);
  findUsers(context);
  EXPECT_GT(view.yieldCount(), yields);
}

}  // namespace
}  // namespace quorvel::test
