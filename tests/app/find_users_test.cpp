#include <algorithm>

#include "app/find_users_command.h"
#include "app/open_log_command.h"
#include "core/text.h"
#include "tests/app/scanned_log.h"

namespace quorvel::test {
namespace {

using Lines = std::vector<std::string>;

constexpr const char* kErrorsLogged =
    "One or more errors where generated while searching throuhg the logfile.\r\n"
    "Please look in the file error.log for more information.";

class FindUsersTest : public ScannedLogTest {
 protected:
  void useText(std::string_view text, LogType type = LogType::ServU) {
    useLog(context, folder.write("a.log", text), "a.log", type);
    view.forgetCalls();
  }
  /// The names in the users file; "" for a slot without a record.
  [[nodiscard]] Lines names() const {
    auto users = UsersFile::open(systemFiles(), state.usersFilePath());
    Lines all;
    for (std::int32_t n = 1; users.isOk() && n <= users.value().recordCount(); ++n)
      all.push_back(users.value().read(n).value_or(UserAct()).Name);
    return all;
  }
  void expectAtRest() const {
    EXPECT_FALSE(view.isProgressVisible());
    EXPECT_FALSE(view.isCommandRunning());
    EXPECT_FALSE(state.commandRunning);
    EXPECT_EQ(view.status(StatusPanel::Text), "Using a.log");
  }
};

TEST_F(FindUsersTest, ShowsItsProgressSessionBySession) {
  findUsers(context);
  const auto length = std::to_string(logLines("").size() + 1);
  Lines progress{"progress on", "progress range 0 " + length};
  Lines labels{"labels on"};
  for (const char* position : {"1", "35", "167", "729"}) {  // the start, then each session
    progress.push_back("progress value " + std::string(position));
    labels.push_back("labels \"Current position:\" \"" + std::string(position) + '"');
  }
  progress.insert(progress.end(), {"progress value 0", "progress off"});
  labels.push_back("labels off");
  EXPECT_EQ(view.callsStartingWith("progress"), progress);
  EXPECT_EQ(view.callsStartingWith("labels"), labels);
  EXPECT_EQ(view.callsStartingWith("status"),
            (Lines{R"(status 1 "Searching a.log")", R"(status 3 "Logons: 0")", R"(status 3 "Logons: 1")",
                   R"(status 3 "Logons: 2")", R"(status 3 "Logons: 3")", R"(status 3 "Logons: 3")",
                   R"(status 1 "Adding to treeview")", R"(status 1 "Using: a.log")", R"(status 1 "Using a.log")"}));
  EXPECT_TRUE(view.messages().empty());
}

TEST_F(FindUsersTest, ReplacesWhatAnEarlierScanLeft) {
  for (const char* name : {"test.qva", "test.qv2"})
    folder.write(name, "old");
  useText(logLines("(000002)"));
  EXPECT_FALSE(view.isEnabled(MenuItem::mnuFilterSelected));
  EXPECT_FALSE(view.isEnabled(MenuItem::mnuCountSelectedSessions));
  findUsers(context);
  EXPECT_EQ(names(), Lines{"bob"});
  EXPECT_EQ(state.tree.nodeCount(), 2);
  EXPECT_FALSE(folder.has("test.qva") || folder.has("test.qv2"));
  EXPECT_TRUE(view.isEnabled(MenuItem::mnuFilterSelected));
  EXPECT_TRUE(view.isEnabled(MenuItem::mnuCountSelectedSessions));

  useText("no session\r\n");
  findUsers(context);
  EXPECT_FALSE(folder.has("users.qva"));
  EXPECT_EQ(state.tree.nodeCount(), 0);
  EXPECT_EQ(view.status(StatusPanel::Logons), "Logons: 0");
}

TEST_F(FindUsersTest, StopKeepsTheSessionsFoundAndBuildsNoTree) {
  state.stopFlag = true;  // pressed while nothing ran
  view.atEachYield([this] { state.stopFlag = view.status(StatusPanel::Logons) == "Logons: 2"; });
  findUsers(context);
  EXPECT_EQ(names(), (Lines{"alice", "bob"}));
  EXPECT_FALSE(state.stopFlag);
  EXPECT_EQ(state.tree.nodeCount(), 0);
  EXPECT_FALSE(view.wasCalled("status 1 \"Adding to treeview\""));
  EXPECT_TRUE(view.isEnabled(MenuItem::mnuFilterAll));
  expectAtRest();
}

TEST_F(FindUsersTest, EveryYieldShowsCompleteRecordsAndRefusesAnotherCommand) {
  view.atEachYield([this] {
    EXPECT_EQ("Logons: " + std::to_string(names().size()), view.status(StatusPanel::Logons));
    findUsers(context);
    chooseLogFile(context);
    openLogFile(context, folder / "error.log");
  });
  findUsers(context);
  EXPECT_EQ(names(), (Lines{"alice", "bob", "alice"}));
  EXPECT_EQ(view.callsStartingWith("running"), (Lines{"running on", "running off"}));
  EXPECT_TRUE(view.fileRequests().empty());
  EXPECT_EQ(state.logTitle, "a.log");
}

TEST_F(FindUsersTest, YieldsAreSpacedByTimeAndTheLogIsOpenedOnce) {
  Pacer patient{std::chrono::hours(1)};
  EXPECT_TRUE(patient.isDue());
  FailingFiles files(0);
  CommandContext other{files, settings, state, view, patient};
  findUsers(other);
  EXPECT_EQ(view.yieldCount(), 3) << "those of the tree built by the fixture";
  EXPECT_EQ(view.status(StatusPanel::Logons), "Logons: 3");
  EXPECT_EQ(files.opened("a.log"), 1);
}

TEST_F(FindUsersTest, TheSecondTypeIsScannedTheThirdAndNoLogAreNot) {
  useText(logLines(""), LogType::ServU25a);
  findUsers(context);
  EXPECT_EQ(names().size(), 3U);
  state.logPath.clear();
  state.errorsLogged = true;
  view.forgetCalls();
  findUsers(context);
  EXPECT_EQ(view.calls(), (Lines{"running on", "running off"}));
  EXPECT_FALSE(state.errorsLogged);
  EXPECT_TRUE(folder.has("users.qva"));
  useText(logLines(""), LogType::WarFtpd);
  findUsers(context);
  EXPECT_FALSE(folder.has("users.qva"));
  EXPECT_TRUE(view.isEnabled(MenuItem::mnuFilterAll));
  EXPECT_TRUE(view.isEnabled(MenuItem::mnuCountAllTransfers));
  expectAtRest();
}

TEST_F(FindUsersTest, ARecordTooLongIsLoggedAndTold) {
  settings.WriteSetting("MAIN", "TrunkLongUsernames", "0");
  std::string text = logLines("");
  const std::string longName(60, 'x');
  text.replace(text.find("USER bob") + 5, 3, longName);
  useText(text);
  findUsers(context);
  EXPECT_EQ(names(), (Lines{"alice", "", "alice"}));
  EXPECT_EQ(message(), kErrorsLogged);
  EXPECT_NE(folder.read("error.log").find("error when saving post No 2"), std::string::npos);
  EXPECT_NE(folder.read("error.log").find(longName), std::string::npos);

  settings.WriteSetting("MAIN", "TrunkLongUsernames", "1");
  findUsers(context);
  EXPECT_EQ(names()[1], std::string(12, 'x'));
  EXPECT_EQ(view.messages().size(), 1U);
}

/// Real files, save that big.log is one session at the start, zero bytes, and another session beyond 2 GB.
class FarLogFiles : public FailingFiles {
 public:
  FarLogFiles() : FailingFiles(0) {}
  Result<std::unique_ptr<File>> open(const std::filesystem::path& path, OpenMode mode) override {
    if (path.filename() != "big.log") return FailingFiles::open(path, mode);
    return Result<std::unique_ptr<File>>(std::make_unique<FarLog>());
  }

 private:
  class FarLog : public File {
   public:
    Result<std::size_t> readAt(std::uint64_t offset, std::span<char> buffer) const override {
      std::fill(buffer.begin(), buffer.end(), '\0');
      put(0, m_first, offset, buffer);
      put(kFar, m_second, offset, buffer);
      const std::uint64_t end = kFar + m_second.size();
      return static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), end - std::min(offset, end)));
    }
    Status writeAt(std::uint64_t, std::string_view) override { return Error{ErrorCode::PermissionDenied, {}}; }
    Status append(std::string_view) override { return Error{ErrorCode::PermissionDenied, {}}; }
    Status resize(std::uint64_t) override { return Error{ErrorCode::PermissionDenied, {}}; }
    Result<std::uint64_t> size() const override { return kFar + m_second.size(); }
    Status sync() override { return {}; }

   private:
    static constexpr std::uint64_t kFar = 0x80000000U;
    /// The part of text, which stands at position, that lies in the buffer read from offset.
    static void put(std::uint64_t position, std::string_view text, std::uint64_t offset, std::span<char> buffer) {
      for (std::size_t i = 0; i < text.size(); ++i)
        if (position + i >= offset && position + i - offset < buffer.size())
          buffer[static_cast<std::size_t>(position + i - offset)] = text[i];
    }
    std::string m_first = logLines("(000001)");
    std::string m_second = logLines("(000002)");
  };
};

TEST_F(FindUsersTest, ASessionBeyondWhatARecordHoldsEndsTheScan) {
  FarLogFiles files;
  useLog(context, folder / "big.log", "big.log", LogType::ServU);
  CommandContext other{files, settings, state, view, pacer};
  findUsers(other);
  EXPECT_EQ(names(), Lines{"alice"});
  EXPECT_EQ(state.tree.nodeCount(), 2);
  EXPECT_EQ(message(), kErrorsLogged);
  EXPECT_NE(folder.read("error.log").find("VB Error No. 6\r\nVB Error Description: Overflow\r\n"), std::string::npos);
}

std::string errorText(const MainWindowState& state, const std::string& error, const std::string& codePoint) {
  return "VB error: " + error + "\r\nTrying to acces file:\r\n" + pathText(state.usersFilePath()) +
         "\r\nit cannot be found.\r\n\r\nCode point: " + codePoint +
         "\r\n\r\nPlease report this bug by email, add the above information to the mail.\r\n"
         "Click OK to report, Cancel to abort\r\n";
}

TEST_F(FindUsersTest, AMissingLogIsReportedOnOkAndToldInOneSentenceUnattended) {
  useText("");
  std::filesystem::remove(state.logPath);
  view.answerMessage(false);
  findUsers(context);
  EXPECT_EQ(message(), errorText(state, "53 File not found", "60"));
  EXPECT_EQ(view.messages().back().buttons, Buttons::OkCancel);
  EXPECT_TRUE(view.callsStartingWith("address").empty());
  EXPECT_EQ(state.tree.nodeCount(), 0) << "its records are gone";
  EXPECT_FALSE(view.isEnabled(MenuItem::mnuFilterAll));
  expectAtRest();

  view.answerMessage(true);
  findUsers(context);
  EXPECT_EQ(view.callsStartingWith("address").size(), 1U);

  state.batchFlag = true;
  view.forgetCalls();
  findUsers(context);
  EXPECT_EQ(message(), pathText(state.logPath) + ": File not found.");
  EXPECT_TRUE(state.batchFailed);
  EXPECT_TRUE(view.callsStartingWith("address").empty());
}

TEST_F(FindUsersTest, WhateverFailsIsToldAndTheWindowComesToRest) {
  const int attempts = failEachOperation([this](CommandContext& other, const FailingFiles& files) {
    view.forgetCalls();
    findUsers(other);
    expectAtRest();
    const bool isTold = !view.callsStartingWith("message").empty();
    const bool isComplete = names() == Lines{"alice", "bob", "alice"};
    EXPECT_TRUE(isTold || isComplete);
    EXPECT_TRUE(files.hasFailed() || !isTold);
    if (view.messages().size() > 1 || !isTold) return;
    EXPECT_EQ(message(), errorText(state, "70 Permission denied", "30")) << "the users file cannot be deleted";
    EXPECT_EQ(state.tree.nodeCount(), 5);
    EXPECT_TRUE(isComplete);
  });
  EXPECT_GE(attempts, 5);
}

}  // namespace
}  // namespace quorvel::test
