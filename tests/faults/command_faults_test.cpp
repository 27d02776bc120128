// Every command with every kind of fault at every call it makes: nothing that was there may be lost.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "app/menu_commands.h"
#include "app/options.h"
#include "cli/batch_run.h"
#include "tests/support/memory_files.h"
#include "tests/support/program_world.h"

namespace quorvel::test {
namespace {

const std::filesystem::path kFolder = "/program";
const std::filesystem::path kSettings = kFolder / "quorvel.ini";
const std::filesystem::path kUsers = kFolder / "users.qva";
const std::filesystem::path kLog = "/logs/a.log";
const std::filesystem::path kResults = "/logs/out.txt";

struct Command {
  std::string name;
  std::function<void(ProgramWorld&)> run;
  std::function<void(MemoryFiles&)> prepare = [](MemoryFiles&) {};
};

/// Chooses a menu item, which may ask for a file.
Command choosing(MenuItem item) {
  return {menuItemName(item), [item](ProgramWorld& world) {
            world.view.choose(item == MenuItem::mnuOpenLogFile ? kLog : kResults);
            runMenuCommand(item, world.window);
          }};
}

Command unattended(const std::string& name, const std::string& codes) {
  return {name, [codes](ProgramWorld& world) {
            (void)runBatch(world.window, kLog.string() + ' ' + codes + ' ' + kResults.string());
          }};
}

void startUp(ProgramWorld& world) {
  world.settings.prepareFile();
  world.settings.resetOtherVersion();
  world.window.load();
  EXPECT_TRUE(world.window.readPlacement().isCentred);
  world.window.useLog(kLog, "a.log", LogType::ServU);
}

void acceptOptions(ProgramWorld& world) {
  frmOption dialog(world.window.context());
  dialog.Form_Load();
  for (int page = 0; page < frmOption::kPageCount; ++page)
    dialog.lstSelectOption_Click(page);
  dialog.cmdOK_Click();
}

std::vector<Command> allCommands() {
  using enum MenuItem;
  std::vector<Command> commands = {
      unattended("batch_filter", "100 210 250 10.0.0.5 260 bob"),
      unattended("batch_count", "100 300 350 10.0.0.5 360 alice"),
      {"drop_log", [](ProgramWorld& world) { world.window.openLogFile(kLog); }},
      {"click_node", [](ProgramWorld& world) { world.window.TreeView1_NodeClick(kSecondSession); }},
      {"right_click", [](ProgramWorld& world) { world.window.TreeView1_RightButton(); }},
      {"auto_filter", [](ProgramWorld& world) { world.window.toggleAutoFilter(); }},
      {"options", acceptOptions},
      {"start_up", startUp},
      {"first_start", startUp, [](MemoryFiles& disk) { (void)disk.remove(kSettings); }},
      {"start_of_a_new_version", startUp,
       [](MemoryFiles& disk) {
         disk.put(kSettings, "[MAIN]\r\nVersion=1.0.300\r\n[OTHER]\r\nKept=yes\r\n");
         disk.put(kFolder / "quoran.ini", "[MAIN]\r\n");
       }},
      {"shutdown",
       [](ProgramWorld& world) {
         world.window.unload({1, 2, 300, 200}, true);
       }},
      {"mnuFilterAll_anew",
       [](ProgramWorld& world) {
         world.settings.WriteSetting("OPTION-SAVE", "AppendWhenFilter", "0");
         choosing(mnuFilterAll).run(world);
       }},
  };
  for (const MenuItem item :
       {mnuOpenLogFile, mnuSaveShortInfo, mnuSaveFilterWindow, mnuFindUsers, mnuFilterAll, mnuFilterSelected,
        mnuFilterIP, mnuFilterUser, mnuFilterSession, mnuReloadTreeView, mnuCountAllTransfers, mnuCountSelectedSessions,
        mnuCountIPTransfers, mnuCountUsersTransfers, mnuCountSessionsTransfers, mnuShowIPUsername,
        mnuShowCheckboxesInTreeView})
    commands.push_back(choosing(item));
  return commands;
}

/// A command run in a program with three sessions, with the call of that number failing of those the fault is about.
class FaultRun {
 public:
  FaultRun(const Command& command, Fault fault, int number) : m_name(command.name), m_fault(fault) {
    m_disk.put(kSettings, busySettings());
    m_disk.put(kLog, logLines(""));
    m_disk.put(kResults, kOldResults);
    m_world.scanAndTick(kLog);
    m_world.view.forgetCalls();
    m_recordsBefore = records();
    command.prepare(m_disk);
    m_settingsBefore = m_disk.content(kSettings);
    m_disk.arm(fault, number);
    command.run(m_world);
  }
  [[nodiscard]] bool hasFailed() const { return !m_disk.failedPath().empty(); }
  [[nodiscard]] std::size_t resultsSize() const { return m_disk.content(kResults).size(); }

  void expectNothingLost() const {
    EXPECT_EQ(m_disk.content(kLog), logLines(""));
    const std::string results = m_disk.content(kResults);
    const bool appends = is("batch") || (is("mnuFilter") && !is("Session"));
    const bool replaces = is("Save") || is("anew");
    EXPECT_TRUE(replaces || (appends ? results.starts_with(kOldResults) : results == kOldResults)) << results;
    static const std::set<std::string> kKnown = {"quorvel.ini", "users.qva",     "a.log",      "quoran.ini",
                                                 "out.txt",     "bad_trans.txt", "filter.qva", "error.log"};
    for (const auto& path : m_disk.paths()) {
      EXPECT_TRUE(kKnown.contains(path.filename().string())) << path << " was left behind";
      const std::string text = m_disk.content(path);
      EXPECT_TRUE(text.empty() || path == kUsers || text.ends_with("\r\n")) << path << ": " << text;
    }
    expectWholeSettings();
    const auto left = records();
    for (std::size_t n = 0; n < left.size(); ++n)
      EXPECT_TRUE(left[n] == UserAct() || left[n] == m_recordsBefore[n]) << "record " << n << " was changed";
  }
  /// The window is at rest, and its user has heard of trouble; sizes are compared, because saved texts begin with the
  /// time.
  void expectTold(std::size_t soundResultsSize) {
    using enum Fault;
    m_world.expectIdle();
    const std::string messages = m_world.allMessages();
    const auto& path = m_disk.failedPath();
    const bool losesLog = path == kLog && std::set{Open, Size, Read}.contains(m_fault);
    const bool losesResults =
        path == kResults && std::set{Open, Size, Write, ShortWrite, DiskFull, Rename}.contains(m_fault);
    const bool isComplete = resultsSize() == soundResultsSize;
    EXPECT_TRUE(!losesResults || messages.find(kResults.string()) != std::string::npos) << messages;
    const bool hasFailed = losesResults || losesLog || !(isComplete || path == kSettings);
    EXPECT_TRUE(!is("batch") || !hasFailed || m_world.state.batchFailed);
    EXPECT_TRUE(!losesLog || !messages.empty());
    // Settings that cannot be read are the default ones.
    EXPECT_TRUE(isComplete || is("mnuFilter") || path == kSettings || !messages.empty());
    const bool mustKeepOld = is("SaveFilterWindow") || (is("Save") && path == kUsers && m_fault == Open);
    EXPECT_TRUE(!mustKeepOld || isComplete || m_disk.content(kResults) == kOldResults);
    if (is("FindUsers")) expectFindMessage(messages);
  }
  /// Finds and filters the sessions once the trouble is over; the size of what comes out.
  std::size_t tryAgain() {
    const std::filesystem::path again = "/logs/again.txt";
    m_disk.disarm();
    m_world.view.forgetCalls();
    m_world.window.useLog(kLog, "a.log", LogType::ServU);
    m_world.window.mnuFindUsers_Click();
    m_world.view.choose(again);
    m_world.window.mnuFilterAll_Click();
    EXPECT_EQ(m_world.view.callsStartingWith("message").size(), 0u);
    return m_disk.content(again).size();
  }

 private:
  [[nodiscard]] bool is(std::string_view part) const { return m_name.find(part) != std::string::npos; }
  /// The file before the command, or one with every line it had and the values the command wrote.
  void expectWholeSettings() const {
    const std::string text = m_disk.content(kSettings);
    if (text == m_settingsBefore || text == defaultSettingsText()) return;
    EXPECT_TRUE(text.starts_with("[MAIN]\r\nVersion=")) << text;
    EXPECT_NE(text.find("[OTHER]\r\nKept=yes\r\n"), std::string::npos) << text;
  }
  /// The three sessions but for their nodes; empty where there is none.
  [[nodiscard]] std::vector<UserAct> records() const {
    std::vector<UserAct> all(3);
    const std::string users = m_disk.content(kUsers);
    for (std::size_t n = 0; n * kRecordSize < users.size(); ++n) {
      EXPECT_TRUE(decodeRecord(std::string_view(users).substr(n * kRecordSize, kRecordSize), all.at(n))) << n;
      all[n].TreeIndex = 0;
    }
    return all;
  }
  void expectFindMessage(const std::string& messages) {
    const bool keepsOldUsers = m_fault == Fault::Remove && m_disk.failedPath() == kUsers;
    EXPECT_EQ(keepsOldUsers, messages.starts_with("VB error: 70 Permission denied\r\n") &&
                                 messages.find("\r\nCode point: 30\r\n") != std::string::npos);
    EXPECT_TRUE(!keepsOldUsers || m_world.state.tree.nodeCount() == kThirdSession);
    EXPECT_TRUE(!messages.empty() || (m_fault != Fault::Remove && records() == m_recordsBefore));
  }

  std::string m_name;
  Fault m_fault;
  MemoryFiles m_disk;
  ProgramWorld m_world{m_disk, kFolder};
  std::vector<UserAct> m_recordsBefore;
  std::string m_settingsBefore;
};

class CommandFaults : public testing::TestWithParam<Command> {};

TEST_P(CommandFaults, CostNothing) {
  FaultRun sound(GetParam(), Fault::Open, 0);
  const std::size_t soundResultsSize = sound.resultsSize();
  const std::size_t sizeAgain = sound.tryAgain();
  int runs = 0;
  for (std::size_t fault = 0; fault < kFaultNames.size(); ++fault) {
    for (int n = 1; !HasFailure(); ++n, ++runs) {
      SCOPED_TRACE(kFaultNames[fault] + std::string(" at call ") + std::to_string(n));
      FaultRun run(GetParam(), static_cast<Fault>(fault), n);
      if (!run.hasFailed()) break;
      run.expectNothingLost();
      run.expectTold(soundResultsSize);
      EXPECT_EQ(run.tryAgain(), sizeAgain) << "as if there had been no trouble";
    }
  }
  RecordProperty("runs", runs);
  EXPECT_GT(runs, 0);
}

INSTANTIATE_TEST_SUITE_P(Commands, CommandFaults, testing::ValuesIn(allCommands()),
                         [](const auto& command) { return command.param.name; });

}  // namespace
}  // namespace quorvel::test
