// Plays the scripts of this folder: menu items are chosen, and the calls that the window gets are written down.
#include <array>
#include <map>
#include <regex>

#include "app/main_window.h"
#include "app/options.h"
#include "tests/app/scanned_log.h"
#include "tests/support/records.h"
#include "tests/support/script.h"
#include "tests/tree/tree_text.h"

namespace quorvel::test {
namespace {

using Item = void (frmMain::*)();
const std::map<std::string, Item> kItems = {
    {"load", &frmMain::load},
    {"unload", &frmMain::unload},
    {"mnuOpenLogFile", &frmMain::mnuOpenLogFile_Click},
    {"mnuSaveShortInfo", &frmMain::mnuSaveShortInfo_Click},
    {"mnuSaveFilterWindow", &frmMain::mnuSaveFilterWindow_Click},
    {"mnuFindUsers", &frmMain::mnuFindUsers_Click},
    {"mnuStop", &frmMain::mnuStop_Click},
    {"mnuFilterAll", &frmMain::mnuFilterAll_Click},
    {"mnuFilterSelected", &frmMain::mnuFilterSelected_Click},
    {"mnuFilterIP", &frmMain::mnuFilterIP_Click},
    {"mnuFilterUser", &frmMain::mnuFilterUser_Click},
    {"mnuFilterSession", &frmMain::mnuFilterSession_Click},
    {"mnuReloadTreeView", &frmMain::mnuReloadTreeView_Click},
    {"toggleAutoFilter", &frmMain::toggleAutoFilter},
    {"mnuCountAllTransfers", &frmMain::mnuCountAllTransfers_Click},
    {"mnuCountSelectedSessions", &frmMain::mnuCountSelectedSessions_Click},
    {"mnuCountIPTransfers", &frmMain::mnuCountIPTransfers_Click},
    {"mnuCountUsersTransfers", &frmMain::mnuCountUsersTransfers_Click},
    {"mnuCountSessionsTransfers", &frmMain::mnuCountSessionsTransfers_Click},
    {"rightButton", &frmMain::TreeView1_RightButton},
    {"mnuShowUsernameLogontime", &frmMain::mnuShowUsernameLogontime_Click},
    {"mnuShowUsernameIP", &frmMain::mnuShowUsernameIP_Click},
    {"mnuShowIPUsername", &frmMain::mnuShowIPUsername_Click},
    {"mnuShowIPLogontime", &frmMain::mnuShowIPLogontime_Click},
    {"mnuShowCheckboxes", &frmMain::mnuShowCheckboxesInTreeView_Click},
    {"mnuTreeViewUncheckAll", &frmMain::mnuTreeViewUncheckAll_Click},
    {"mnuWebVisitWebsite", &frmMain::mnuWebVisitWebsite_Click},
    {"mnuWebSendEmail", &frmMain::mnuWebSendEmail_Click},
    {"mnuWebReportBug", &frmMain::mnuWebReportBug_Click},
};

/// Calls that come with every command.
bool isUsual(std::string_view call) {
  constexpr std::array<std::string_view, 8> kUsual = {"status 1",   "busy",         "progress",     "labels",
                                                      "tree about", "tree changed", "tree enabled", "tree visi"};
  return std::any_of(kUsual.begin(), kUsual.end(), [call](auto start) { return call.starts_with(start); });
}

/// The next word of a line.
template <typename T = std::string>
T next(std::istream& in) {
  T value{};
  in >> value;
  return value;
}

/// The rest of the line, in which "\r\n" stands for a line end.
std::string rest(std::istream& in) {
  std::string text;
  std::getline(in >> std::ws, text);
  return std::regex_replace(text, std::regex(R"(\\r\\n)"), "\r\n");
}

/// The program in a folder of its own, with a log of three sessions. "> x" does something and answers with the calls
/// the window got, ">> x" also with the usual ones, "- x" does it and answers nothing, "? x" looks at something, as "?
/// disabled" does at the menus.
class Player {
 public:
  Player() {
    folder.write("a.log", logLines(""));
    settings.WriteDefaultSettingsFile();
  }

  std::string act(const std::string& line) {
    std::istringstream in(line);
    const auto kind = next(in);
    if (kind == "?") return shown(kQuestions.at(next(in))(*this, in));
    view.forgetCalls();
    perform(in);
    std::string calls;
    for (const std::string& call : view.calls()) {
      if (kind == "-" || call == "yield" || call.starts_with("running") || call.starts_with("enable")) continue;
      if (kind == ">>" || !isUsual(call)) calls += call + "\n";
    }
    return shown(calls);
  }

 private:
  using Verb = void (*)(Player&, std::istream&);
  using Question = std::string (*)(Player&, std::istream&);
  static const std::map<std::string, Verb> kVerbs;
  static const std::map<std::string, Question> kQuestions;

  void perform(std::istream& in) {
    const auto verb = next(in);
    if (const auto item = kItems.find(verb); item != kItems.end()) return (window.*item->second)();
    kVerbs.at(verb)(*this, in);
  }
  /// Names of folders and times of today made the same everywhere.
  [[nodiscard]] std::string shown(const std::string& text) const {
    const std::string here = std::regex_replace(text, std::regex(folder.path().string()), "FOLDER");
    return std::regex_replace(here, std::regex(R"(\d{4}-\d\d-\d\d( +Time: | )\d\d:\d\d:\d\d)"), "DATE$1TIME");
  }

  // What is asked for.
  [[nodiscard]] std::string request() const {
    const FileRequest& last = view.fileRequests().back();
    return '"' + last.title + "\" " + last.filter + ' ' + std::to_string(last.filterIndex) + ' ' +
           last.folder.string() + (last.fileMustExist ? " must exist" : "") +
           (last.asksBeforeOverwriting ? " asks before overwriting" : "");
  }
  /// The sessions' names and nodes.
  [[nodiscard]] std::string names(const std::string& name) const {
    auto users = UsersFile::open(systemFiles(), folder / name);
    std::string text;
    for (std::int32_t n = 1; users.isOk() && n <= users.value().recordCount(); ++n) {
      const UserAct record = users.value().read(n).value_or(UserAct());
      text += (n == 1 ? "" : ", ") + record.Name + ' ' + std::to_string(record.TreeIndex);
    }
    return text;
  }
  [[nodiscard]] std::string disabledItems() const {
    std::string names;
    for (int item = 0; item <= static_cast<int>(MenuItem::mnuPopupCountSessionsTransfers); ++item)
      if (!view.isEnabled(static_cast<MenuItem>(item))) names.append(menuItemName(static_cast<MenuItem>(item))) += ' ';
    return names;
  }
  [[nodiscard]] std::string statusPanels() const {
    using enum StatusPanel;
    return view.status(Text) + " | " + view.status(LogType) + " | " + view.status(Logons) + " | " +
           view.status(FilterOptions);
  }
  [[nodiscard]] std::string placement() const {
    const auto [isCentred, bounds, isMaximized] = window.readPlacement();
    std::ostringstream text;
    text << (isCentred ? "centred " : "") << (isMaximized ? "maximized " : "") << bounds.top << ' ' << bounds.left
         << ' ' << bounds.width << ' ' << bounds.height;
    return text.str();
  }
  /// The options dialog's page: its name and its rows with their states, a disabled one in parentheses.
  [[nodiscard]] std::string optionsPage() const {
    const OptionControls& controls = options.controls();
    std::string text = controls.frameCaption + "\n";
    for (const OptionButtonControl& button : controls.optOption)
      if (button.isVisible) text += (button.isOn ? "* " : "o ") + button.caption + "\n";
    for (const CheckBoxControl& box : controls.chkOption) {
      const std::string value = std::to_string(static_cast<int>(box.value));
      if (box.isVisible) text += (box.isEnabled ? value : "(" + value + ")") + " " + box.caption + "\n";
    }
    for (const std::string& entry : controls.comboBox.entries)
      text += entry + " ";
    text += controls.comboBox.isVisible ? std::to_string(controls.comboBox.selected) + ' ' : "";
    return text + controls.unitLabel.text + "\n" + linesOf(controls.footnote.text);
  }

  TempFolder folder;
  Settings settings{systemFiles(), folder.path()};
  RecordingView view;
  Pacer pacer{Pacer::Clock::duration::zero()};
  frmMain window{systemFiles(), settings, view, pacer, folder.path()};
  MainWindowState& state = window.state();
  frmOption options{window.context()};
};

const std::map<std::string, Player::Verb> Player::kVerbs = {
    // A dialog's answer, given before the menu item is chosen.
    {"open", [](Player& p, std::istream& in) {
       const auto path = p.folder / next(in);
       p.view.chooseOpen(path, next<int>(in));
     }},
    {"save", [](Player& p, std::istream& in) { p.view.chooseSave(p.folder / next(in)); }},
    {"openFails", [](Player& p, std::istream& in) {
       p.view.answerOpen({FileChoice::Outcome::Failed, {}, 1, rest(in), 12});
     }},
    {"saveFails", [](Player& p, std::istream& in) {
       p.view.answerSave({FileChoice::Outcome::Failed, {}, 1, rest(in), -1});
     }},
    {"answerNo", [](Player& p, std::istream&) { p.view.answerMessage(false); }},
    // Does something else at a yield, counted from 1.
    {"atYield", [](Player& p, std::istream& in) {
       const int number = p.view.yieldCount() + next<int>(in);
       p.view.atYield(number, [&p, line = rest(in)] {
         std::istringstream again(line);
         p.perform(again);
       });
     }},
    {"use", [](Player& p, std::istream& in) {
       p.window.useLog(p.folder / "a.log", "a.log", static_cast<LogType>(next<int>(in)));
     }},
    {"scan", [](Player& p, std::istream&) {
       p.window.useLog(p.folder / "a.log", "a.log", LogType::ServU);
       p.window.mnuFindUsers_Click();
     }},
    {"drop", [](Player& p, std::istream& in) { p.window.openLogFile(p.folder / next(in)); }},
    {"click", [](Player& p, std::istream& in) { p.window.TreeView1_NodeClick(next<int>(in)); }},
    {"check", [](Player& p, std::istream& in) { p.window.setNodeChecked(next<int>(in), true); }},
    {"paste", [](Player& p, std::istream& in) { p.window.cmdPasteResultTortbFilter_Click(rest(in), "RETR\r\nSTOR"); }},
    {"set", [](Player& p, std::istream& in) {
       const auto section = next(in);
       const auto key = next(in);
       p.settings.WriteSetting(section, key, rest(in));
     }},
    {"write", [](Player& p, std::istream& in) {
       const auto name = next(in);
       p.folder.write(name, rest(in));
     }},
    {"copy", [](Player& p, std::istream& in) {
       const auto from = p.folder / next(in);
       std::filesystem::copy_file(from, p.folder / next(in));
     }},
    {"remove", [](Player& p, std::istream& in) { std::filesystem::remove(p.folder / next(in)); }},
    // The window's bounds and whether it is maximized.
    {"close", [](Player& p, std::istream& in) {
       const WindowBounds bounds{next<int>(in), next<int>(in), next<int>(in), next<int>(in)};
       p.window.unload(bounds, next<bool>(in));
     }},
    {"options", [](Player& p, std::istream&) { p.options.Form_Load(); }},
    {"page", [](Player& p, std::istream& in) { p.options.lstSelectOption_Click(next<int>(in)); }},
    {"bufferPage", [](Player& p, std::istream&) { p.options.loadFindUserinfoOptions(); }},
    {"box", [](Player& p, std::istream& in) { p.options.chkOption_Click(next<std::size_t>(in)); }},
    {"layout", [](Player& p, std::istream& in) { p.options.optOption_Click(next<std::size_t>(in)); }},
    {"ok", [](Player& p, std::istream&) { p.options.cmdOK_Click(); }},
};

const std::map<std::string, Player::Question> Player::kQuestions = {
    {"status", [](Player& p, std::istream&) { return p.statusPanels(); }},
    {"disabled", [](Player& p, std::istream&) { return p.disabledItems(); }},
    {"request", [](Player& p, std::istream&) { return p.request(); }},
    {"messageBox",
     [](Player& p, std::istream&) {
       const Message& last = p.view.messages().back();
       return last.title + " buttons " + std::to_string(static_cast<int>(last.buttons));
     }},
    {"file",
     [](Player& p, std::istream& in) {
       const auto name = next(in);
       return p.folder.has(name) ? linesOf(p.folder.read(name)) : "none";
     }},
    // Those lines of a file that hold a text.
    {"lines",
     [](Player& p, std::istream& in) {
       std::istringstream lines(linesOf(p.folder.read(next(in))));
       const auto text = rest(in);
       std::string found;
       for (std::string line; std::getline(lines, line);)
         if (line.find(text) != std::string::npos) found += line + "\n";
       return found;
     }},
    {"setting",
     [](Player& p, std::istream& in) {
       const auto section = next(in);
       return p.settings.ReadSetting(section, next(in));
     }},
    {"freshSettings",
     [](Player& p, std::istream&) {
       return std::string(p.folder.read("quorvel.ini") == defaultSettingsText() ? "yes" : "no");
     }},
    {"log",
     [](Player& p, std::istream&) {
       return p.state.hasLog() ? p.state.logPath.string() + " " + p.state.logTitle + " " + p.state.logTypeName : "none";
     }},
    {"session", [](Player& p, std::istream&) { return describe(p.state.currentSession); }},
    {"sessions", [](Player& p, std::istream& in) { return p.names(next(in)); }},
    {"record",
     [](Player& p, std::istream& in) {
       auto users = UsersFile::open(systemFiles(), p.folder / "users.qva");
       return describe(users.value().read(next<std::int32_t>(in)).value());
     }},
    {"tree", [](Player& p,
                std::istream&) { return treeText(p.state.tree) + "selected " + std::to_string(p.state.selectedNode); }},
    {"filter", [](Player& p, std::istream&) { return linesOf(p.view.filterText()); }},
    {"placement", [](Player& p, std::istream&) { return p.placement(); }},
    {"page", [](Player& p, std::istream&) { return p.optionsPage(); }},
};

class Commands : public testing::TestWithParam<Script> {};

TEST_P(Commands, FollowTheScript) {
  Player player;
  play(GetParam(), [&](const std::string& line) { return player.act(line); });
}

INSTANTIATE_TEST_SUITE_P(Scripts, Commands, testing::ValuesIn(loadScripts(QUORVEL_APP_SCRIPTS)),
                         [](const auto& script) { return script.param.name(); });

}  // namespace
}  // namespace quorvel::test
