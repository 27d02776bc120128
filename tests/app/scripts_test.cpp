// Plays the scripts of this folder: menu items are chosen, and the calls that the window gets are written down.
#include <array>
#include <functional>
#include <map>
#include <optional>
#include <regex>

#include "app/menu_commands.h"
#include "app/options.h"
#include "tests/classic/tree/tree_text.h"
#include "tests/support/program_world.h"
#include "tests/support/records.h"
#include "tests/support/script.h"

namespace quorvel::test {
namespace {

/// Calls that come with every command.
bool isUsual(std::string_view call) {
  constexpr std::array<std::string_view, 8> kUsual = {"status 1",   "busy",         "progress",     "labels",
                                                      "tree about", "tree changed", "tree enabled", "tree visi"};
  return std::any_of(kUsual.begin(), kUsual.end(), [call](auto start) { return call.starts_with(start); });
}

/// What a line of a script says, word by word.
struct Words {
  /// All from word n on, counted from 0, in which "\r\n" stands for a line end.
  [[nodiscard]] std::string from(std::size_t n) const {
    const std::regex start("^(\\S+\\s*){" + std::to_string(n) + "}");
    return std::regex_replace(std::regex_replace(line, start, ""), std::regex(R"(\\r\\n)"), "\r\n");
  }
  [[nodiscard]] std::string word(std::size_t n) const { return from(n).substr(0, from(n).find(' ')); }
  [[nodiscard]] int number(std::size_t n) const { return std::stoi(word(n)); }

  std::string line;
};

/// "> x" does something and answers with the calls the window got, ">> x" also with the usual ones, "- x" does it and
/// answers nothing, "? x" looks at something, as "? disabled" does at the menus.
class Player : LogWindow {
 public:
  std::string act(const std::string& line) {
    const std::string kind = line.substr(0, line.find(' '));
    const Words words{line.substr(kind.size() + 1)};
    if (kind == "?") return shown(m_questions.at(words.word(0))(words));
    view.forgetCalls();
    perform(words);
    std::string calls;
    for (const std::string& call : view.calls()) {
      if (kind == "-" || call == "yield" || call.starts_with("running") || call.starts_with("enable")) continue;
      if (kind == ">>" || !isUsual(call)) calls += call + "\n";
    }
    return shown(calls);
  }

 private:
  void perform(const Words& words) {
    for (int item = 0; item <= static_cast<int>(MenuItem::mnuPopupCountSessionsTransfers); ++item)
      if (menuItemName(static_cast<MenuItem>(item)) == words.word(0))
        return runMenuCommand(static_cast<MenuItem>(item), window);
    m_verbs.at(words.word(0))(words);
  }
  /// Names of folders and times of today made the same everywhere.
  [[nodiscard]] std::string shown(const std::string& text) const {
    const std::string here = std::regex_replace(text, std::regex(folder.path().string()), "FOLDER");
    return std::regex_replace(here, std::regex(R"(\d{4}-\d\d-\d\d( +Time: | )\d\d:\d\d:\d\d)"), "DATE$1TIME");
  }

  /// Those lines of a file that hold a text.
  [[nodiscard]] std::string linesWith(const std::string& name, const std::string& text) const {
    std::istringstream lines(linesOf(folder.read(name)));
    std::string found;
    for (std::string line; std::getline(lines, line);)
      if (line.find(text) != std::string::npos) found += line + "\n";
    return found;
  }
  /// The sessions' names and nodes.
  [[nodiscard]] std::string sessions(const std::string& name) const {
    auto users = UsersFile::open(systemFiles(), folder / name);
    std::string text;
    for (std::int32_t n = 1; users.isOk() && n <= users.value().recordCount(); ++n) {
      const UserAct* const record = users.value().read(n);
      text += (n == 1 ? "" : ", ") + record->Name + ' ' + std::to_string(record->TreeIndex);
    }
    return text;
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

  using W = const Words&;

  frmOption options{window.context()};
  const std::map<std::string, std::function<void(W)>> m_verbs = {
      {"load", [this](W) { window.load(); }},
      {"unload", [this](W) { window.unload(); }},
      {"toggleAutoFilter", [this](W) { window.toggleAutoFilter(); }},
      {"rightButton", [this](W) { window.TreeView1_RightButton(); }},
      // A dialog's answer, given before the menu item is chosen.
      {"open", [this](W w) { view.choose(folder / w.word(1), w.number(2)); }},
      {"save", [this](W w) { view.choose(folder / w.word(1)); }},
      {"dialogFails",
       [this](W w) {
         view.fileAnswer = {FileChoice::Outcome::Failed, {}, 1, w.from(2), w.number(1)};
       }},
      {"answerNo", [this](W) { view.messageAnswer = false; }},
      // Something done inside a later yield, counted from 1.
      {"atYield",
       [this](W w) {
         view.atYield(view.yieldCount() + w.number(1), [this, later = Words{w.from(2)}] { perform(later); });
       }},
      {"start",
       [this](W) {
         settings.prepareFile();
         settings.resetOtherVersion();
       }},
      {"use", [this](W w) { window.useLog(folder / "a.log", "a.log", static_cast<LogType>(w.number(1))); }},
      {"scan", [this](W) { scan(); }},
      {"drop", [this](W w) { window.openLogFile(folder / w.word(1)); }},
      {"click", [this](W w) { window.TreeView1_NodeClick(w.number(1)); }},
      {"check", [this](W w) { window.setNodeChecked(w.number(1), true); }},
      {"paste", [this](W w) { window.cmdPasteResultTortbFilter_Click(w.from(1), "RETR\r\nSTOR"); }},
      {"set", [this](W w) { settings.WriteSetting(w.word(1), w.word(2), w.from(3)); }},
      {"write", [this](W w) { folder.write(w.word(1), w.from(2)); }},
      {"touch", [this](W w) { std::filesystem::last_write_time(folder / w.word(1), {}); }},
      {"copy", [this](W w) { std::filesystem::copy_file(folder / w.word(1), folder / w.word(2)); }},
      {"remove", [this](W w) { std::filesystem::remove(folder / w.word(1)); }},
      // The window's bounds and whether it is maximized.
      {"close",
       [this](W w) {
         window.unload({w.number(1), w.number(2), w.number(3), w.number(4)}, w.number(5) != 0);
       }},
      {"options", [this](W) { options.Form_Load(); }},
      {"page", [this](W w) { options.lstSelectOption_Click(w.number(1)); }},
      {"bufferPage", [this](W) { options.loadFindUserinfoOptions(); }},
      {"box", [this](W w) { options.chkOption_Click(static_cast<std::size_t>(w.number(1))); }},
      {"layout", [this](W w) { options.optOption_Click(static_cast<std::size_t>(w.number(1))); }},
      {"ok", [this](W) { options.cmdOK_Click(); }},
  };
  const std::map<std::string, std::function<std::string(W)>> m_questions = {
      {"status", [this](W) { return statusPanels(); }},
      {"disabled", [this](W) { return view.disabledItems(); }},
      {"file", [this](W w) { return folder.has(w.word(1)) ? linesOf(folder.read(w.word(1))) : "none"; }},
      {"lines", [this](W w) { return linesWith(w.word(1), w.from(2)); }},
      {"setting", [this](W w) { return settings.ReadSetting(w.word(1), w.word(2)); }},
      {"freshSettings", [this](W) { return folder.read("quorvel.ini") == defaultSettingsText() ? "yes" : "no"; }},
      {"log",
       [this](W) {
         return state.hasLog() ? state.logPath.string() + ' ' + state.logTitle + ' ' + state.logTypeName : "none";
       }},
      {"session", [this](W) { return describe(state.currentSession); }},
      {"sessions", [this](W w) { return sessions(w.word(1)); }},
      {"tree", [this](W) { return treeText(state.tree) + "selected " + std::to_string(state.selectedNode); }},
      {"filter", [this](W) { return linesOf(view.filterText()); }},
      {"placement", [this](W) { return placement(); }},
      {"page", [this](W) { return optionsPage(); }},
  };
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
