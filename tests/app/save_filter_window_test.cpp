#include "app/save_filter_window_command.h"

#include "core/text.h"
#include "tests/app/scanned_log.h"
#include "tests/support/failing_files.h"

namespace quorvel::test {
namespace {

class SaveFilterWindowTest : public ScannedLogTest {
 protected:
  SaveFilterWindowTest() {
    view.setUserInfo("Username:   ann\r\nFrom IP:    1.2.3.4");
    view.setFilterText("line 1\r\nline 2");
    view.forgetCalls();
  }
  /// What was saved, less the line with the time.
  [[nodiscard]] std::string saved() const {
    std::string text = folder.read("out.txt");
    const auto time = text.find("Processed: ");
    return time == std::string::npos ? text
                                     : text.erase(time, std::string("Processed: 2005-01-19 13:28:08\r\n").size());
  }
  [[nodiscard]] std::string report() const {
    return "Log:       " + pathText(state.logPath) +
           "\r\n\r\nUsername:   ann\r\nFrom IP:    1.2.3.4\r\n\r\nline 1\r\nline 2\r\n";
  }
};

TEST_F(SaveFilterWindowTest, ReplacesTheFileByWhatTheWindowShows) {
  const auto path = folder.write("out.txt", std::string(1000, 'x'));
  view.chooseSave(path);
  saveFilterWindow(context);
  EXPECT_EQ(saved(), report());
  EXPECT_EQ(settings.ReadSetting("Main", "LastSavePath"), folder.path().string());
  EXPECT_EQ(view.callsStartingWith("status"),
            (std::vector<std::string>{"status 1 \"Saving " + pathText(path) + "\"", "status 1 \"Using a.log\""}));
  EXPECT_EQ(view.fileRequests().at(0).filter, "Filtered logfile (filter window)             (*.txt)|*.txt");
  EXPECT_TRUE(view.messages().empty());
}

TEST_F(SaveFilterWindowTest, CancellingSavesNothing) {
  saveFilterWindow(context);
  EXPECT_TRUE(view.callsStartingWith("status").empty());
  EXPECT_EQ(settings.ReadSetting("Main", "LastSavePath"), "");
}

TEST_F(SaveFilterWindowTest, AFailureNamesTheFileAndKeepsIt) {
  int tried = 0;
  for (bool failed = true; failed; ++tried) {
    const auto path = folder.write("out.txt", "old");
    view.chooseSave(path);
    FailingFiles files(tried + 1);
    CommandContext other{files, settings, state, view, pacer};
    saveFilterWindow(other);
    failed = files.hasFailed();
    EXPECT_EQ(saved(), failed ? "old" : report()) << "operation " << tried + 1;
    EXPECT_TRUE(!failed || message().starts_with(pathText(path) + ": ")) << message();
    EXPECT_EQ(view.status(StatusPanel::Text), "Using a.log");
  }
  EXPECT_EQ(tried, 5) << "open, write, sync and rename can fail";
  EXPECT_EQ(view.messages().size(), 4U);
}

}  // namespace
}  // namespace quorvel::test
