// Every command with every kind of fault at every call it makes: nothing that was there may be lost.
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <new>
#include <optional>
#include <string>

#include "app/options.h"
#include "cli/batch_run.h"
#include "tests/faults/program_world.h"
#include "tests/support/memory_files.h"

namespace quorvel::test {
namespace {

const std::filesystem::path kFolder = "/program";
const std::filesystem::path kSettings = kFolder / "quorvel.ini";
const std::filesystem::path kUsers = kFolder / "users.qva";
const std::filesystem::path kLog = "/logs/a.log";
const std::filesystem::path kResults = "/logs/out.txt";

/// What a command may do to the results file, apart from leaving it alone.
enum class Results {
  Untouched,
  Appended,
  Replaced
};

struct Command {
  std::string_view name;
  void (*run)(ProgramWorld&);
  Results results = Results::Untouched;
  void (*prepare)(MemoryFiles&) = [](MemoryFiles&) {};
};

/// Runs a menu item, which may ask where to save to.
template <void (frmMain::*item)()>
void choose(ProgramWorld& world) {
  world.view.chooseSave(kResults);
  (world.window.*item)();
}

void runBatchOf(ProgramWorld& world, const std::string& codes) {
  if (runBatch(world.window, kLog.string() + ' ' + codes + ' ' + kResults.string()).failed)
    world.view.setUserInfo("failed");
}

void startUp(ProgramWorld& world) {
  world.settings.prepareFile();
  world.settings.resetOtherVersion();
  world.window.load();
  EXPECT_TRUE(world.window.readPlacement().isCentred);
  world.window.useLog(kLog, "a.log", LogType::ServU);
}

void replaceResults(MemoryFiles& disk) {
  std::string text = disk.content(kSettings);
  constexpr std::string_view kKey = "AppendWhenFilter=";
  text[text.find(kKey) + kKey.size()] = '0';
  disk.put(kSettings, text);
}

const Command kCommands[] = {
    {"open_log",
     [](ProgramWorld& world) {
       world.view.chooseOpen(kLog);
       world.window.mnuOpenLogFile_Click();
     }},
    {"drop_log", [](ProgramWorld& world) { world.window.openLogFile(kLog); }},
    {"find_users", choose<&frmMain::mnuFindUsers_Click>},
    {"reload_tree", choose<&frmMain::mnuReloadTreeView_Click>},
    {"click_node", [](ProgramWorld& world) { world.window.TreeView1_NodeClick(kSecondSession); }},
    {"filter_session", choose<&frmMain::mnuFilterSession_Click>},
    {"filter_all", choose<&frmMain::mnuFilterAll_Click>, Results::Appended},
    {"filter_ip", choose<&frmMain::mnuFilterIP_Click>, Results::Appended},
    {"filter_user", choose<&frmMain::mnuFilterUser_Click>, Results::Appended},
    {"filter_selected", choose<&frmMain::mnuFilterSelected_Click>, Results::Appended},
    {"filter_all_anew", choose<&frmMain::mnuFilterAll_Click>, Results::Replaced, replaceResults},
    {"save_filter_window", choose<&frmMain::mnuSaveFilterWindow_Click>, Results::Replaced},
    {"save_short_info", choose<&frmMain::mnuSaveShortInfo_Click>, Results::Replaced},
    {"count_all", choose<&frmMain::mnuCountAllTransfers_Click>},
    {"count_selected", choose<&frmMain::mnuCountSelectedSessions_Click>},
    {"count_ip", choose<&frmMain::mnuCountIPTransfers_Click>},
    {"count_user", choose<&frmMain::mnuCountUsersTransfers_Click>},
    {"count_session", choose<&frmMain::mnuCountSessionsTransfers_Click>},
    {"batch_filter", [](ProgramWorld& world) { runBatchOf(world, "100 210 250 10.0.0.5 260 bob"); }, Results::Appended},
    {"batch_count", [](ProgramWorld& world) { runBatchOf(world, "100 300 350 10.0.0.5 360 alice"); },
     Results::Appended},
    {"write_settings",
     [](ProgramWorld& world) {
       world.window.toggleAutoFilter();
       world.window.mnuShowCheckboxesInTreeView_Click();
       world.window.TreeView1_RightButton();
       world.window.mnuShowIPUsername_Click();
       world.settings.WriteSetting("Main", "LastOpenFile01", "b.log");
     }},
    {"options",
     [](ProgramWorld& world) {
       frmOption dialog(world.window.context());
       dialog.Form_Load();
       for (int page = 0; page < frmOption::kPageCount; ++page)
         dialog.lstSelectOption_Click(page);
       dialog.cmdOK_Click();
     }},
    {"start_up", startUp},
    {"first_start", startUp, Results::Untouched, [](MemoryFiles& disk) { (void)disk.remove(kSettings); }},
    {"start_of_a_new_version", startUp, Results::Untouched,
     [](MemoryFiles& disk) {
       disk.put(kSettings, "[MAIN]\r\nVersion=1.0.300\r\n[OTHER]\r\nKept=yes\r\n");
       disk.put(kFolder / "quoran.ini", "[MAIN]\r\n");
     }},
    {"shutdown",
     [](ProgramWorld& world) { world.window.unload({.top = 1, .left = 2, .width = 300, .height = 200}, true); }},
};

/// One run of a command, with one call failing or none.
class FaultRun {
 public:
  explicit FaultRun(const Command& command) : m_command(command) {
    m_disk.put(kSettings, busySettings());
    m_disk.put(kLog, logLines(""));
    m_disk.put(kResults, kOldResults);
    m_world.emplace(m_disk, kFolder);
    m_world->scan(kLog);
    m_world->view.forgetCalls();
    m_usersBefore = m_disk.content(kUsers);
    m_command.prepare(m_disk);
    m_settingsBefore = m_disk.content(kSettings);
  }

  /// The size of the results file when nothing fails.
  std::size_t runSoundly() {
    m_command.run(*m_world);
    return m_disk.content(kResults).size();
  }
  /// False when the command makes fewer calls than n.
  bool run(Fault fault, int n, std::size_t soundSize) {
    m_disk.arm(fault, n);
    const bool hasReturned = returns(fault);
    if (m_disk.failedPath().empty()) return false;
    SCOPED_TRACE(m_disk.failedPath().string());
    expectNothingLost();
    if (!hasReturned) return true;
    m_world->expectIdle();
    expectViewAtRest();
    expectMessage(fault, m_disk.content(kResults).size() == soundSize);
    // Once the trouble is over, everything works as if there had been none.
    static const std::size_t kSizeOfAll = FaultRun(m_command).tryAgain();
    EXPECT_EQ(tryAgain(), kSizeOfAll);
    return true;
  }

 private:
  /// Runs the command; false where it leaves it to the program to end with a message, for want of memory.
  bool returns(Fault fault) {
    try {
      m_command.run(*m_world);
      return true;
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(fault, Fault::NoMemory);
      return false;
    }
  }
  void expectViewAtRest() {
    const RecordingView& view = m_world->view;
    for (const std::string_view pair : {"busy o", "tree visible o", "tree enabled o", "labels o"}) {
      const auto calls = view.callsStartingWith(pair);
      EXPECT_TRUE(calls.empty() || calls.back().ends_with("on") == pair.starts_with("tree")) << calls.back();
    }
    EXPECT_EQ(view.callsStartingWith("tree about").size(), view.callsStartingWith("tree changed").size());
  }
  void expectNothingLost() {
    EXPECT_EQ(m_disk.content(kLog), logLines(""));
    const std::string results = m_disk.content(kResults);
    EXPECT_TRUE(m_command.results != Results::Untouched || results == kOldResults) << results;
    EXPECT_TRUE(m_command.results != Results::Appended || results.starts_with(kOldResults)) << results;
    std::size_t known = 0;
    for (const auto& name : {kSettings, kUsers, kLog, kFolder / "quoran.ini"})
      known += m_disk.Exist(name) ? 1u : 0u;
    for (const auto& name : {kResults, kFolder / "bad_trans.txt", kFolder / "filter.qva", kFolder / "error.log"}) {
      known += m_disk.Exist(name) ? 1u : 0u;
      const std::string text = m_disk.content(name);
      EXPECT_TRUE(text.empty() || text.ends_with("\r\n")) << name << ": " << text;
    }
    EXPECT_EQ(m_disk.count(), known) << "a temporary file was left behind";
    expectWholeSettings();
    EXPECT_TRUE(usersAreThoseOf(true)) << "a record was changed";
  }
  /// The file before the command, or one with every line it had and the values the command wrote.
  void expectWholeSettings() {
    const std::string text = m_disk.content(kSettings);
    if (text == m_settingsBefore || text == defaultSettingsText()) return;
    EXPECT_TRUE(text.starts_with("[MAIN]\r\nVersion=")) << text;
    EXPECT_NE(text.find("[OTHER]\r\nKept=yes\r\n"), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with("\r\n"));
  }
  /// Whether the users file holds the records of the scan, but for their nodes. Some may be missing where it says so.
  [[nodiscard]] bool usersAreThoseOf(bool someMayMiss) const {
    const std::string users = m_disk.content(kUsers);
    for (std::size_t at = 0; at < std::max(users.size(), m_usersBefore.size()); at += kRecordSize) {
      const auto found = recordAt(users, at);
      const bool isMissing = at >= users.size() || found == UserAct();
      if (!(someMayMiss && isMissing) && found != recordAt(m_usersBefore, at)) return false;
    }
    return true;
  }
  static std::optional<UserAct> recordAt(const std::string& users, std::size_t at) {
    auto record = decodeRecord(at < users.size() ? std::string_view(users).substr(at, kRecordSize) : "");
    if (record) record->TreeIndex = 0;
    return record;
  }
  /// Trouble that the user has to hear of.
  void expectMessage(Fault fault, bool isComplete) {
    using enum Fault;
    const auto isOneOf = [fault](std::initializer_list<Fault> faults) {
      return std::find(faults.begin(), faults.end(), fault) != faults.end();
    };
    const auto& path = m_disk.failedPath();
    const std::string messages = m_world->allMessages();
    const std::string_view name = m_command.name;
    const bool isBatch = name.starts_with("batch");
    const bool isSaving = name.starts_with("save");
    const bool losesResults = path == kResults && isOneOf({Open, Size, Write, ShortWrite, DiskFull, Rename});
    const bool losesLog = path == kLog && isOneOf({Open, Size, Read});
    EXPECT_TRUE(!losesResults || messages.find(kResults.string()) != std::string::npos) << messages;
    EXPECT_TRUE(!isBatch || !(losesResults || losesLog) || m_world->view.userInfo() == "failed");
    // Settings that cannot be read are the default ones; sizes are compared, because saved texts begin with the time.
    EXPECT_TRUE(!(isBatch || isSaving) || path == kSettings || isComplete || !messages.empty());
    const bool mustKeepOld = name == "save_filter_window" || (isSaving && path == kUsers && fault == Open);
    EXPECT_TRUE(!mustKeepOld || isComplete || m_disk.content(kResults) == kOldResults) << m_disk.content(kResults);
    EXPECT_TRUE(!losesLog || !(name == "find_users" || name.ends_with("_log")) || !messages.empty());
    if (name == "find_users") expectFindMessage(messages, fault == Remove, path == kUsers);
  }
  void expectFindMessage(const std::string& messages, bool isRemove, bool isOfUsers) {
    const bool keepsOldUsers = isRemove && isOfUsers;
    EXPECT_EQ(keepsOldUsers, messages.starts_with("VB error: 70 Permission denied\r\n") &&
                                 messages.find("\r\nCode point: 30\r\n") != std::string::npos);
    EXPECT_TRUE(!keepsOldUsers || m_world->window.state().tree.nodeCount() == kThirdSession);
    EXPECT_TRUE(!messages.empty() || (!isRemove && usersAreThoseOf(false)));
  }
  /// Finds and filters the sessions without trouble; the size of what comes out.
  std::size_t tryAgain() {
    const std::filesystem::path again = "/logs/again.txt";
    m_disk.disarm();
    m_world->view.forgetCalls();
    m_world->view.forgetAnswers();
    m_world->window.useLog(kLog, "a.log", LogType::ServU);
    m_world->window.mnuFindUsers_Click();
    m_world->view.chooseSave(again);
    m_world->window.mnuFilterAll_Click();
    EXPECT_EQ(m_world->view.callsStartingWith("message").size(), 0u);
    return m_disk.content(again).size();
  }

  const Command& m_command;
  MemoryFiles m_disk;
  std::optional<ProgramWorld> m_world;
  std::string m_usersBefore;
  std::string m_settingsBefore;
};

class CommandFaults : public testing::TestWithParam<Command> {};

TEST_P(CommandFaults, CostNothing) {
  const std::size_t soundSize = FaultRun(GetParam()).runSoundly();
  int runs = 0;
  for (std::size_t fault = 0; fault < kFaultNames.size(); ++fault) {
    for (int n = 1; !HasFailure(); ++n, ++runs) {
      SCOPED_TRACE(kFaultNames[fault] + std::string(" at call ") + std::to_string(n));
      if (!FaultRun(GetParam()).run(static_cast<Fault>(fault), n, soundSize)) break;
    }
  }
  RecordProperty("runs", runs);
  EXPECT_GT(runs, 0);
}

INSTANTIATE_TEST_SUITE_P(Commands, CommandFaults, testing::ValuesIn(kCommands),
                         [](const auto& command) { return std::string(command.param.name); });

}  // namespace
}  // namespace quorvel::test
