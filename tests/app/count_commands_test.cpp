#include "app/count_commands.h"

#include "counter/counter_result.h"
#include "tests/app/scanned_log.h"

namespace quorvel::test {
namespace {

using Command = void (*)(CommandContext&);

class CountCommandsTest : public ScannedLogTest {
 protected:
  CountCommandsTest() { set("CountBytes", "0"); }
  void set(std::string_view key, std::string_view value) { settings.WriteSetting("OPTION-COUNTER", key, value); }
  /// Caption and the four counts of the result shown, e.g. "all users: 1 1 1 0".
  std::string resultOf(Command command) {
    view.forgetCalls();
    command(context);
    const auto shown = view.callsStartingWith("counter result");
    return shown.empty() ? "" : shortened(shown.back());
  }
  static std::string shortened(std::string_view call) {
    std::string result(call.substr(0, call.find("\" \"")));
    result.erase(0, std::string_view("counter result \"Counter result - ").size());
    for (const std::string_view label : {"sends: ", "receives: ", "RETR errors: ", "STOR errors: "})
      result += ' ' + std::string(1, call.at(call.find(label) + label.size()));
    return result;
  }
};

TEST_F(CountCommandsTest, EachCommandCountsItsSessions) {
  click(kFirstSession);
  state.tree.setChecked(kSecondSession, true);
  state.tree.setChecked(kThirdSession, true);
  EXPECT_EQ(resultOf(countAllTransfers), "all users 1 1 1 0");
  EXPECT_EQ(resultOf(countIPTransfers), "IP: 10.0.0.5 1 0 1 0");
  EXPECT_EQ(resultOf(countUsersTransfers), "username: alice 1 0 1 0");
  EXPECT_EQ(resultOf(countSessionsTransfers), "this session 1 0 0 0");
  EXPECT_EQ(resultOf(countSelectedSessions), "selected sessions 0 1 1 0");
  state.tree.uncheckAll();
  EXPECT_EQ(resultOf(countSelectedSessions), "selected sessions 0 0 0 0");
  click(kSecondSession);
  state.currentSession = {};
  EXPECT_EQ(resultOf(countSessionsTransfers), "this session 0 1 0 0") << "the clicked node decides";
  EXPECT_EQ(state.currentSession.Name, "bob");
}

TEST_F(CountCommandsTest, TheWindowIsLeftAsItWasAndFailedTransfersGoToTheirFile) {
  set("GetFilenameOnTransferError", "1");
  countAllTransfers(context);
  EXPECT_TRUE(folder.read("bad_trans.txt").ends_with("\r\n(000003) Error sending file C:\\c.zip\r\n"));
  EXPECT_TRUE(view.wasCalled("progress range 0 " + std::to_string(logLines("").size())));
  EXPECT_TRUE(view.wasCalled("status 1 \"Displaying counter result\""));
  EXPECT_EQ(view.callsStartingWith("busy").back(), "busy off");
  EXPECT_FALSE(view.isProgressVisible());
  EXPECT_EQ(view.status(StatusPanel::Text), "Using Serv-U log file");
}

TEST_F(CountCommandsTest, MissingSessionsAndFilesCountAsNothing) {
  EXPECT_EQ(resultOf(countIPTransfers), "");
  EXPECT_EQ(message(), "Please click on a session with the current IP\r\nExiting");
  EXPECT_EQ(resultOf(countUsersTransfers), "");
  EXPECT_EQ(message(), "Please click on a session with the current user\r\nExiting");
  EXPECT_EQ(view.status(StatusPanel::Text), "Using Serv-U log file");
  click(kFirstSession);
  std::filesystem::remove(state.usersFilePath());
  EXPECT_EQ(resultOf(countUsersTransfers), "username: alice 0 0 0 0");
  std::filesystem::remove(state.logPath);
  EXPECT_EQ(resultOf(countAllTransfers), "all users 0 0 0 0");
  state.logPath.clear();
  for (const Command command :
       {countAllTransfers, countSelectedSessions, countIPTransfers, countUsersTransfers, countSessionsTransfers})
    EXPECT_EQ(resultOf(command), "");
  EXPECT_EQ(view.messages().size(), 2u);
}

TEST_F(CountCommandsTest, StopShowsTheTotalsSoFar) {
  view.atYield(view.yieldCount() + 1, [this] { state.stopFlag = true; });
  EXPECT_NE(resultOf(countAllTransfers), "");
  EXPECT_FALSE(state.stopFlag);
}

TEST_F(CountCommandsTest, BatchAppendsResultsToItsFile) {
  startBatch();
  state.BatchCountUser = "bob";
  state.BatchCountIP = "10.0.0.5";
  countAllTransfers(context);
  state.batchDescription = "username: bob";
  countUsersTransfers(context);
  state.batchDescription = "IP: 10.0.0.5";
  countIPTransfers(context);
  const CounterResultOptions options{};
  EXPECT_EQ(folder.read("out.txt"), counterResultBlock({1, 1, 1, 0, 0, 0}, "All transfers", options) +
                                        counterResultBlock({0, 1, 0, 0, 0, 0}, "username: bob", options) +
                                        counterResultBlock({1, 0, 1, 0, 0, 0}, "IP: 10.0.0.5", options));
  EXPECT_TRUE(view.callsStartingWith("counter result").empty());
  EXPECT_FALSE(state.batchFailed);
}

TEST_F(CountCommandsTest, BatchFailsForFilesItCannotUse) {
  const auto failsNaming = [this](std::string_view name) {
    const std::size_t told = view.messages().size();
    state.batchFailed = false;
    countAllTransfers(context);
    EXPECT_TRUE(state.batchFailed) << name;
    EXPECT_EQ(view.messages().size(), told + 1) << name;
    EXPECT_NE(message().find(name), std::string::npos);
  };
  startBatch();
  state.batchOutputFile = folder / "missing" / "out.txt";
  failsNaming("out.txt");
  state.batchOutputFile = state.logPath;
  failsNaming("a.log");
  EXPECT_EQ(folder.read("a.log"), logLines(""));
  state.batchOutputFile = folder / "out.txt";
  std::filesystem::remove(state.logPath);
  failsNaming("a.log");
  EXPECT_FALSE(folder.has("out.txt"));
}

TEST_F(CountCommandsTest, PastedResultsFollowTheFilterText) {
  view.setFilterText("old");
  pasteCounterResult(context, "Counter result - username: J\xF8rgen\xDF", "RETR\r\nSTOR");
  pasteCounterResult(context, "ip", "x");
  EXPECT_EQ(
      view.filterText(),
      "old\r\n\r\n--- COUNTER RESULT - USERNAME: J\xD8RGEN\xDF ---\r\nRETR\r\nSTOR\r\n\r\n\r\n--- IP ---\r\nx\r\n");
}

}  // namespace
}  // namespace quorvel::test
