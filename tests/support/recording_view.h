// A main window for tests: writes down every call as one line of text and answers questions from a script.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/view.h"

namespace quorvel::test {

/// The name of a menu item as the program spells it.
inline std::string menuItemName(MenuItem item) {
  std::istringstream names(
      "mnuOpenLogFile mnuSaveShortInfo mnuSaveFilterWindow mnuPrint mnuExit mnuFindUsers mnuStop mnuFilterAll "
      "mnuFilterSelected mnuFilterIP mnuFilterUser mnuFilterSession mnuReloadTreeView mnuCountAllTransfers "
      "mnuCountSelectedSessions mnuCountIPTransfers mnuCountUsersTransfers mnuCountSessionsTransfers mnuGotoPosition "
      "mnuGetComputersIP mnuTreeViewUncheckAll mnuOptions mnuHelpCommandLineReference mnuWebVisitWebsite "
      "mnuWebSendEmail mnuWebReportBug mnuAbout mnuShowUsernameLogontime mnuShowUsernameIP mnuShowIPUsername "
      "mnuShowIPLogontime mnuReloadTreeView02 mnuShowCheckboxesInTreeView mnuTreeViewUncheckAll02 "
      "mnuPopupCountSessionsTransfers");
  std::string name;
  for (int i = 0; i <= static_cast<int>(item); ++i)
    names >> name;
  return name;
}

/// Lines read like `status 1 "Using a.log"`; CR and LF stand in them as \r and \n. An unscripted message is answered
/// with its default button, an unscripted file dialog is cancelled.
class RecordingView : public MainWindowView {
 public:
  // What the next file dialog and the next message are answered with.
  FileChoice fileAnswer;
  bool messageAnswer = true;
  void choose(const std::filesystem::path& path, int filterIndex = 1) {
    fileAnswer = {FileChoice::Outcome::Chosen, path, filterIndex, {}, 0};
  }
  /// Runs action inside yield number n, counted from 1 over the view's life.
  void atYield(int n, std::function<void()> action) { m_yieldActions[n] = std::move(action); }

  // What happened.
  [[nodiscard]] const std::vector<std::string>& calls() const { return m_calls; }
  [[nodiscard]] std::vector<std::string> callsStartingWith(std::string_view prefix) const {
    std::vector<std::string> found = m_calls;
    std::erase_if(found, [prefix](const std::string& call) { return !call.starts_with(prefix); });
    return found;
  }
  void forgetCalls() { m_calls.clear(); }
  [[nodiscard]] int yieldCount() const { return m_yieldCount; }
  [[nodiscard]] const std::vector<Message>& messages() const { return m_messages; }

  // What the window shows now.
  [[nodiscard]] std::string status(StatusPanel panel) const { return m_status.at(static_cast<std::size_t>(panel)); }
  /// Each with a blank behind it.
  [[nodiscard]] std::string disabledItems() const {
    std::string names;
    for (const MenuItem item : m_disabled)
      names += menuItemName(item) + ' ';
    return names;
  }
  [[nodiscard]] std::string userInfo() const override { return m_userInfo; }
  [[nodiscard]] std::string filterText() const override { return m_filterText; }

  // What the commands call.
  void setStatusPanel(StatusPanel panel, std::string_view text) override {
    note("status", static_cast<std::int64_t>(panel), m_status.at(static_cast<std::size_t>(panel)) = text);
  }
  void showBusyPointer(bool busy) override { note("busy", busy); }
  void showLogName(std::string_view name) override { note("log", name); }
  void showProgress(bool visible) override { note("progress", visible); }
  void setProgressRange(std::int64_t minimum, std::int64_t maximum) override {
    note("progress range", minimum, maximum);
  }
  void setProgress(std::int64_t value) override { note("progress value", value); }
  void showPositionLabels(bool visible) override { note("labels", visible); }
  void showResult(std::string_view text) override { note("result", text); }
  void setPositionLabels(std::string_view caption, std::string_view position) override {
    note("labels", caption, position);
  }
  void setUserInfo(std::string_view text) override { note("info", m_userInfo = text); }
  void setFilterText(std::string_view text) override { note("filter set", m_filterText = text); }
  void appendFilterText(std::string_view text) override {
    m_filterText += text;
    note("filter append", text);
  }
  void treeIsAboutToChange() override { note("tree about to change"); }
  void treeHasChanged() override { note("tree changed"); }
  void treeChecksHaveChanged() override { note("tree checks changed"); }
  void enableTree(bool enabled) override { note("tree enabled", enabled); }
  void showTree(bool visible) override { note("tree visible", visible); }
  void showTreeCheckBoxes(bool visible) override { note("tree boxes", visible); }
  void setTreeHeader(std::string_view text) override { note("tree header", text); }
  void enableMenuItem(MenuItem item, bool enabled) override {
    m_disabled.erase(item);
    if (!enabled) m_disabled.insert(item);
    note("enable " + menuItemName(item), enabled);
  }
  void checkMenuItem(MenuItem item, bool checked) override { note("check " + menuItemName(item), checked); }
  void popUpTreeMenu() override { note("pop up"); }
  void setCommandRunning(bool running) override { note("running", running); }
  bool showMessage(const Message& message) override {
    note("message", m_messages.emplace_back(message).text);
    if (message.buttons != Buttons::Ok) note("buttons", static_cast<std::int64_t>(message.buttons), message.title);
    return std::exchange(messageAnswer, true);
  }
  [[nodiscard]] FileChoice askOpenFile(const FileRequest& request) override { return ask("ask open", request); }
  [[nodiscard]] FileChoice askSaveFile(const FileRequest& request) override { return ask("ask save", request); }
  void showCounterResult(std::string_view caption, std::string_view text) override {
    note("counter result", caption, text);
  }
  void openAddress(std::string_view address) override { note("address", address); }
  void yield() override {
    note("yield");
    if (const auto action = m_yieldActions.find(++m_yieldCount); action != m_yieldActions.end()) action->second();
  }
  void closeWindow() override { note("close"); }

 private:
  /// One call and what it was given: texts in quotation marks, flags as on or off.
  template <typename... Values>
  void note(std::string line, const Values&... values) {
    (line.append(" ").append(shown(values)), ...);
    m_calls.push_back(std::move(line));
  }
  FileChoice ask(std::string call, const FileRequest& request) {
    if (request.fileMustExist) call += " existing";
    if (request.existing == ExistingFile::AskedToReplace) call += " before replacing";
    if (request.existing == ExistingFile::AskedToAppend) call += " before appending";
    note(call, request.title, request.filter, std::int64_t{request.filterIndex}, request.folder.string());
    return std::exchange(fileAnswer, {});
  }
  static std::string shown(bool on) { return on ? "on" : "off"; }
  static std::string shown(std::int64_t number) { return std::to_string(number); }
  static std::string shown(std::string_view text) {
    std::string line;
    for (const char c : text)
      line += c == '\r' ? std::string("\\r") : c == '\n' ? std::string("\\n") : std::string(1, c);
    return '"' + line + '"';
  }

  std::map<int, std::function<void()>> m_yieldActions;
  std::vector<std::string> m_calls;
  std::vector<Message> m_messages;
  int m_yieldCount = 0;
  std::array<std::string, 5> m_status;  ///< by the panel's number
  std::set<MenuItem> m_disabled;
  std::string m_userInfo;
  std::string m_filterText;
};

}  // namespace quorvel::test
