// Every command with every kind of fault at every call it makes: nothing that was there may be lost.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <map>
#include <new>
#include <optional>
#include <ostream>
#include <string>

#include "app/options.h"
#include "cli/batch_run.h"
#include "core/record_format.h"
#include "tests/faults/program_world.h"
#include "tests/support/memory_files.h"

namespace quorvel::test {
namespace {

const std::filesystem::path kFolder = "/program";
const std::filesystem::path kSettings = kFolder / "quorvel.ini";
const std::filesystem::path kUsers = kFolder / "users.qva";
const std::filesystem::path kLog = "/logs/a.log";
const std::filesystem::path kResults = "/logs/out.txt";
constexpr std::initializer_list<Fault> kReading = {Fault::Open, Fault::Size, Fault::Read};
constexpr std::initializer_list<Fault> kWriting = {Fault::Open,       Fault::Size,     Fault::Write,
                                                   Fault::ShortWrite, Fault::DiskFull, Fault::Rename};
constexpr std::string_view kOldResults = "of an earlier run\r\n";

/// What a command may do to the results file, apart from leaving it alone.
enum class Results {
  Untouched,
  Appended,
  Replaced
};

struct Command {
  const char* name;
  Results results;
  void (*run)(ProgramWorld&);
  void (*prepare)(MemoryFiles&) = nullptr;
};

void PrintTo(const Command& command, std::ostream* out) {
  *out << command.name;
}

/// Runs a menu item that asks where to save to.
template <void (frmMain::*item)()>
void saving(ProgramWorld& world) {
  world.view.chooseSave(kResults);
  (world.window.*item)();
}

template <void (frmMain::*item)()>
void plain(ProgramWorld& world) {
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
    {"open_log", Results::Untouched,
     [](ProgramWorld& world) {
       world.view.chooseOpen(kLog);
       world.window.mnuOpenLogFile_Click();
     }},
    {"drop_log", Results::Untouched, [](ProgramWorld& world) { world.window.openLogFile(kLog); }},
    {"find_users", Results::Untouched, plain<&frmMain::mnuFindUsers_Click>},
    {"reload_tree", Results::Untouched, plain<&frmMain::mnuReloadTreeView_Click>},
    {"click_node", Results::Untouched, [](ProgramWorld& world) { world.window.TreeView1_NodeClick(kSecondSession); }},
    {"filter_session", Results::Untouched, plain<&frmMain::mnuFilterSession_Click>},
    {"filter_all", Results::Appended, saving<&frmMain::mnuFilterAll_Click>},
    {"filter_ip", Results::Appended, saving<&frmMain::mnuFilterIP_Click>},
    {"filter_user", Results::Appended, saving<&frmMain::mnuFilterUser_Click>},
    {"filter_selected", Results::Appended, saving<&frmMain::mnuFilterSelected_Click>},
    {"filter_all_anew", Results::Replaced, saving<&frmMain::mnuFilterAll_Click>, replaceResults},
    {"save_filter_window", Results::Replaced, saving<&frmMain::mnuSaveFilterWindow_Click>},
    {"save_short_info", Results::Replaced, saving<&frmMain::mnuSaveShortInfo_Click>},
    {"count_all", Results::Untouched, plain<&frmMain::mnuCountAllTransfers_Click>},
    {"count_selected", Results::Untouched, plain<&frmMain::mnuCountSelectedSessions_Click>},
    {"count_ip", Results::Untouched, plain<&frmMain::mnuCountIPTransfers_Click>},
    {"count_user", Results::Untouched, plain<&frmMain::mnuCountUsersTransfers_Click>},
    {"count_session", Results::Untouched, plain<&frmMain::mnuCountSessionsTransfers_Click>},
    {"batch_filter", Results::Appended, [](ProgramWorld& world) { runBatchOf(world, "100 210 250 10.0.0.5 260 bob"); }},
    {"batch_count", Results::Appended,
     [](ProgramWorld& world) { runBatchOf(world, "100 300 350 10.0.0.5 360 alice"); }},
    {"write_settings", Results::Untouched,
     [](ProgramWorld& world) {
       world.window.toggleAutoFilter();
       world.window.mnuShowCheckboxesInTreeView_Click();
       world.window.TreeView1_RightButton();
       world.window.mnuShowIPUsername_Click();
       world.settings.WriteSetting("Main", "LastOpenFile01", "b.log");
     }},
    {"options", Results::Untouched,
     [](ProgramWorld& world) {
       frmOption dialog(world.window.context());
       dialog.Form_Load();
       for (int page = 0; page < frmOption::kPageCount; ++page)
         dialog.lstSelectOption_Click(page);
       dialog.cmdOK_Click();
     }},
    {"start_up", Results::Untouched, startUp},
    {"first_start", Results::Untouched, startUp, [](MemoryFiles& disk) { (void)disk.remove(kSettings); }},
    {"start_of_a_new_version", Results::Untouched, startUp,
     [](MemoryFiles& disk) {
       disk.put(kSettings, "[MAIN]\r\nVersion=1.0.300\r\n[OTHER]\r\nKept=yes\r\n");
       disk.put(kFolder / "quoran.ini", "[MAIN]\r\n");
     }},
    {"shutdown", Results::Untouched,
     [](ProgramWorld& world) { world.window.unload({.top = 1, .left = 2, .width = 300, .height = 200}, true); }},
};

std::string logText() {
  return logLines("");
}

bool endsWithALine(std::string_view text) {
  return text.empty() || text.ends_with("\r\n");
}

std::optional<UserAct> recordOf(const std::string& users, std::size_t number) {
  const auto slot = std::string_view(users).substr((number - 1) * kRecordSize, kRecordSize);
  auto record = decodeRecord(slot);
  if (record) record->TreeIndex = 0;
  return record;
}

/// One run of a command with one call failing.
class FaultRun {
 public:
  explicit FaultRun(const Command& command) : m_command(command) {
    m_disk.put(kFolder / "quorvel.ini", busySettings());
    m_disk.put(kLog, logText());
    m_disk.put(kResults, kOldResults);
    m_world.emplace(m_disk, kFolder);
    m_world->scan(kLog);
    m_world->view.forgetCalls();
    m_scanned = m_disk.content(kUsers);
    if (m_command.prepare != nullptr) m_command.prepare(m_disk);
    m_settingsBefore = m_disk.content(kSettings);
  }

  /// False when the command makes fewer calls.
  bool run(Fault fault, int n) {
    m_world->files.arm(fault, n);
    const bool hasReturned = returns(fault);
    if (!m_world->files.hasFailed()) return false;
    SCOPED_TRACE(m_world->files.failedPath().string());
    if (hasReturned) expectIdleWindow();
    expectNothingLost();
    if (!hasReturned) return true;
    expectMessage(fault);
    expectNextTryWorks();
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
  void expectNothingLost() {
    EXPECT_EQ(m_disk.content(kLog), logText());
    const std::string results = m_disk.content(kResults);
    EXPECT_TRUE(m_command.results != Results::Untouched || results == kOldResults) << results;
    EXPECT_TRUE(m_command.results != Results::Appended || results.starts_with(kOldResults)) << results;
    for (const auto& path : {kResults, kFolder / "bad_trans.txt", kFolder / "filter.qva", kFolder / "error.log"})
      EXPECT_TRUE(endsWithALine(m_disk.content(path))) << path << ": " << m_disk.content(path);
    expectWholeSettings();
    expectWholeRecords();
    expectNoOtherFiles();
  }
  void expectNoOtherFiles() {
    const auto isThere = [this](const std::filesystem::path& name) { return m_disk.Exist(kFolder / name); };
    const std::array<std::filesystem::path, 8> names = {"quorvel.ini", "quoran.ini",    "users.qva", "filter.qva",
                                                        kLog,          "bad_trans.txt", "error.log", kResults};
    const auto known = static_cast<std::size_t>(std::count_if(names.begin(), names.end(), isThere));
    EXPECT_EQ(m_disk.count(), known) << "a temporary file was left behind";
  }
  /// The file before the command, or one with every line it had and the values the command wrote.
  void expectWholeSettings() {
    const std::string text = m_disk.content(kSettings);
    if (text == m_settingsBefore || text == defaultSettingsText()) return;
    EXPECT_TRUE(text.starts_with("[MAIN]\r\nVersion=")) << text;
    EXPECT_NE(text.find("[OTHER]\r\nKept=yes\r\n"), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with("\r\n"));
  }
  void expectWholeRecords() {
    const std::string users = m_disk.content(kUsers);
    const std::size_t count = (users.size() + kRecordSize - 1) / kRecordSize;
    for (std::size_t number = 1; number <= count; ++number) {
      const auto record = recordOf(users, number);
      if (record == UserAct()) continue;  // a slot left out
      EXPECT_EQ(record, recordOf(m_scanned, number)) << "record " << number;
    }
  }
  void expectIdleWindow() {
    EXPECT_FALSE(m_world->window.state().commandRunning);
    EXPECT_FALSE(m_world->view.isCommandRunning());
    EXPECT_FALSE(m_world->view.isProgressVisible());
    EXPECT_TRUE(m_world->view.status(StatusPanel::Text).starts_with("Using"))
        << m_world->view.status(StatusPanel::Text);
    for (const char* pair : {"busy o", "tree visible o", "tree enabled o", "labels o"}) {
      const auto calls = m_world->view.callsStartingWith(pair);
      const bool restsOn = std::string_view(pair).starts_with("tree");
      EXPECT_TRUE(calls.empty() || calls.back().ends_with("on") == restsOn) << calls.back();
    }
    EXPECT_EQ(m_world->view.callsStartingWith("tree about").size(),
              m_world->view.callsStartingWith("tree changed").size());
  }
  /// Trouble that the user has to hear of.
  void expectMessage(Fault fault) {
    const auto& path = m_world->files.failedPath();
    const std::string messages = m_world->allMessages();
    const std::string_view name = m_command.name;
    const bool isBatch = name.starts_with("batch");
    const bool losesResults = path == kResults && isOneOf(fault, kWriting);
    const bool losesLog = path == kLog && isOneOf(fault, kReading);
    EXPECT_TRUE(!losesResults || messages.find(kResults.string()) != std::string::npos) << messages;
    EXPECT_TRUE(!isBatch || !(losesResults || losesLog) || m_world->view.userInfo() == "failed");
    const bool isSaving = name.starts_with("save");
    // Settings that cannot be read are the default ones; the sizes, because saved texts begin with the time.
    const bool mustBeComplete = (isBatch || isSaving) && path != kSettings;
    const bool isComplete = m_disk.content(kResults).size() == soundSize();
    EXPECT_TRUE(!mustBeComplete || !messages.empty() || isComplete);
    const bool mustKeepOld = name == "save_filter_window" || (isSaving && path == kUsers && fault == Fault::Open);
    EXPECT_TRUE(!mustKeepOld || isComplete || m_disk.content(kResults) == kOldResults) << m_disk.content(kResults);
    const bool needsLog = name == "find_users" || name.ends_with("_log");
    EXPECT_TRUE(!needsLog || !losesLog || !messages.empty());
    if (name != "find_users") return;
    const bool keepsOldUsers = fault == Fault::Remove && path == kUsers;
    EXPECT_TRUE(fault != Fault::Remove || !messages.empty());
    EXPECT_EQ(keepsOldUsers, messages.starts_with("VB error: 70 Permission denied\r\n") &&
                                 messages.find("\r\nCode point: 30\r\n") != std::string::npos);
    EXPECT_TRUE(!keepsOldUsers || m_world->window.state().tree.nodeCount() == kThirdSession);
    EXPECT_TRUE(!messages.empty() || scanWasSaved());
  }
  /// The size of the results file after the command when nothing fails.
  [[nodiscard]] std::size_t soundSize() const {
    static std::map<const Command*, std::size_t> sizes;
    const auto known = sizes.find(&m_command);
    if (known != sizes.end()) return known->second;
    FaultRun sound(m_command);
    m_command.run(*sound.m_world);
    return sizes[&m_command] = sound.m_disk.content(kResults).size();
  }
  static bool isOneOf(Fault fault, std::initializer_list<Fault> faults) {
    return std::find(faults.begin(), faults.end(), fault) != faults.end();
  }
  [[nodiscard]] bool scanWasSaved() const {
    for (std::size_t number = 1; number <= m_scanned.size() / kRecordSize + 1; ++number)
      if (recordOf(m_disk.content(kUsers), number) != recordOf(m_scanned, number)) return false;
    return true;
  }
  /// Once the trouble is over, everything works as if there had been none.
  void expectNextTryWorks() {
    m_world->files.disarm();
    m_world->view.forgetCalls();
    m_world->view.forgetAnswers();
    const std::filesystem::path again = "/logs/again.txt";
    m_world->window.useLog(kLog, "a.log", LogType::ServU);
    m_world->window.mnuFindUsers_Click();
    m_world->view.chooseSave(again);
    m_world->window.mnuFilterAll_Click();
    EXPECT_EQ(m_world->view.callsStartingWith("message").size(), 0u);
    EXPECT_EQ(m_disk.content(again).size(), sizeOfAllBlocks()) << m_disk.content(again);
  }
  [[nodiscard]] std::size_t sizeOfAllBlocks() const {
    static const std::size_t size = [] {
      MemoryFiles files;
      files.put(kSettings, busySettings());
      files.put(kLog, logText());
      ProgramWorld sound(files, kFolder);
      sound.scan(kLog);
      saving<&frmMain::mnuFilterAll_Click>(sound);
      return files.content(kResults).size();
    }();
    return size;
  }

  const Command& m_command;
  MemoryFiles m_disk;
  std::optional<ProgramWorld> m_world;
  std::string m_scanned;  ///< the users file before the command
  std::string m_settingsBefore;
};

class CommandFaults : public testing::TestWithParam<Command> {};

TEST_P(CommandFaults, CostNothing) {
  int runs = 0;
  for (const auto& [fault, name] : kAllFaults) {
    for (int n = 1; !HasFailure(); ++n, ++runs) {
      SCOPED_TRACE(std::string(name) + " at call " + std::to_string(n));
      if (!FaultRun(GetParam()).run(fault, n)) break;
    }
  }
  RecordProperty("runs", runs);
  EXPECT_GT(runs, 0);
}

INSTANTIATE_TEST_SUITE_P(Commands, CommandFaults, testing::ValuesIn(kCommands),
                         [](const auto& command) { return std::string(command.param.name); });

}  // namespace
}  // namespace quorvel::test
