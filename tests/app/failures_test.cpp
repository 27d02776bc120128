// Commands on files whose operation 1, 2, 3 ... fails, until none does.
#include <functional>

#include "app/find_users_command.h"
#include "app/save_filter_window_command.h"
#include "app/short_info_command.h"
#include "tests/app/scanned_log.h"
#include "tests/support/failing_files.h"

namespace quorvel::test {
namespace {

class Failures : public ScannedLogTest {
 protected:
  /// Calls command and then check with whether an operation failed and which files were opened.
  void failEach(void (*command)(CommandContext&), const std::function<void(bool, const FailingFiles&)>& check) {
    bool failed = true;
    for (int failing = 1; failed; ++failing) {
      SCOPED_TRACE("operation " + std::to_string(failing));
      FailingFiles files(failing);
      CommandContext other{files, settings, state, view, pacer};
      folder.write("out.txt", "old");
      view.chooseSave(folder / "out.txt");
      view.forgetCalls();
      command(other);
      failed = files.hasFailed();
      EXPECT_EQ(view.status(StatusPanel::Text), "Using a.log");
      check(failed, files);
    }
  }
  [[nodiscard]] bool isTold() const { return !view.callsStartingWith("message").empty(); }
};

TEST_F(Failures, TheSavedWindowIsTheOldOneOrWhole) {
  failEach(saveFilterWindow, [this](bool failed, const FailingFiles&) {
    EXPECT_EQ(folder.read("out.txt") == "old", failed);
    EXPECT_EQ(isTold(), failed);
  });
}

TEST_F(Failures, ATableOfSessionsIsGivenUpOnlyWhereTheRecordsCanBeRead) {
  failEach(SaveShortInfoCommand, [this](bool failed, const FailingFiles& files) {
    EXPECT_TRUE(files.opened("out.txt") > 0 || folder.read("out.txt") == "old");
    EXPECT_EQ(isTold(), failed);
  });
}

TEST_F(Failures, AUsersFileThatCannotBeDeletedIsToldWithItsCodePoint) {
  FailingFiles files(1);
  CommandContext other{files, settings, state, view, pacer};
  findUsers(other);
  const std::string text = view.messages().at(0).text;
  EXPECT_TRUE(text.starts_with("VB error: 70 Permission denied\r\n")) << text;
  EXPECT_NE(text.find("\r\nCode point: 30\r\n"), std::string::npos) << text;
  EXPECT_EQ(state.tree.nodeCount(), 5);
}

TEST_F(Failures, AScanOpensTheLogOnceAndYieldsByTheClock) {
  Pacer patient{std::chrono::hours(1)};
  EXPECT_TRUE(patient.isDue());
  FailingFiles files(0);
  CommandContext other{files, settings, state, view, patient};
  const int yields = view.yieldCount();
  findUsers(other);
  EXPECT_EQ(view.yieldCount(), yields);
  EXPECT_EQ(files.opened("a.log"), 1);
}

}  // namespace
}  // namespace quorvel::test
