#include "app/save_filter_window_command.h"

#include "core/text.h"
#include "tests/app/scanned_log.h"

namespace quorvel::test {
namespace {

class SaveFilterWindowTest : public CommandTest {
 protected:
  SaveFilterWindowTest() {
    state.logPath = folder / "a.log";
    view.setUserInfo("Username:   ann\r\nFrom IP:    1.2.3.4");
    view.setFilterText("line 1\r\nline 2");
  }
  /// What was saved, less the line with the time.
  [[nodiscard]] std::string saved() const {
    std::string text = folder.read("out.txt");
    const auto time = text.find("Processed: ");
    return time == std::string::npos ? text
                                     : text.erase(time, std::string("Processed: 2005-01-19 13:28:08\r\n").size());
  }
};

TEST_F(SaveFilterWindowTest, CancellingSavesNothing) {
  saveFilterWindow(context);
  EXPECT_EQ(view.fileRequests().at(0).filter, "Filtered logfile (filter window)             (*.txt)|*.txt");
  EXPECT_TRUE(view.callsStartingWith("status").empty());
  EXPECT_EQ(settings.ReadSetting("Main", "LastSavePath"), "");
}

TEST_F(SaveFilterWindowTest, ReplacesTheFileByWhatTheWindowShowsOrNamesItAndKeepsIt) {
  const std::string report = "Log:       " + pathText(state.logPath) +
                             "\r\n\r\nUsername:   ann\r\nFrom IP:    1.2.3.4\r\n\r\nline 1\r\nline 2\r\n";
  const int attempts = failEachOperation([&](CommandContext& other, const FailingFiles& files) {
    const auto path = folder.write("out.txt", "old");
    view.chooseSave(path);
    view.forgetCalls();
    saveFilterWindow(other);
    EXPECT_EQ(saved(), files.hasFailed() ? "old" : report);
    EXPECT_TRUE(!files.hasFailed() || message().starts_with(pathText(path) + ": ")) << message();
    EXPECT_EQ(view.callsStartingWith("status"),
              (std::vector<std::string>{"status 1 \"Saving " + pathText(path) + "\"", "status 1 \"Using a.log\""}));
  });
  EXPECT_EQ(attempts, 5) << "open, write, sync and rename can fail";
  EXPECT_EQ(view.messages().size(), 4U);
  EXPECT_EQ(settings.ReadSetting("Main", "LastSavePath"), folder.path().string());
}

}  // namespace
}  // namespace quorvel::test
