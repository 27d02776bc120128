// A main window for tests: writes down every call as one line of text and answers questions from a script.
#pragma once

#include <algorithm>
#include <array>
#include <deque>
#include <filesystem>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ui/view.h"

namespace quorvel::test {

/// The name of a menu item as the program spells it.
inline std::string_view menuItemName(MenuItem item) {
  static constexpr std::array<std::string_view, 35> kNames{"mnuOpenLogFile",
                                                           "mnuSaveShortInfo",
                                                           "mnuSaveFilterWindow",
                                                           "mnuPrint",
                                                           "mnuExit",
                                                           "mnuFindUsers",
                                                           "mnuStop",
                                                           "mnuFilterAll",
                                                           "mnuFilterSelected",
                                                           "mnuFilterIP",
                                                           "mnuFilterUser",
                                                           "mnuFilterSession",
                                                           "mnuReloadTreeView",
                                                           "mnuCountAllTransfers",
                                                           "mnuCountSelectedSessions",
                                                           "mnuCountIPTransfers",
                                                           "mnuCountUsersTransfers",
                                                           "mnuCountSessionsTransfers",
                                                           "mnuGotoPosition",
                                                           "mnuGetComputersIP",
                                                           "mnuTreeViewUncheckAll",
                                                           "mnuOptions",
                                                           "mnuHelpCommandLineReference",
                                                           "mnuWebVisitWebsite",
                                                           "mnuWebSendEmail",
                                                           "mnuWebReportBug",
                                                           "mnuAbout",
                                                           "mnuShowUsernameLogontime",
                                                           "mnuShowUsernameIP",
                                                           "mnuShowIPUsername",
                                                           "mnuShowIPLogontime",
                                                           "mnuReloadTreeView02",
                                                           "mnuShowCheckboxesInTreeView",
                                                           "mnuTreeViewUncheckAll02",
                                                           "mnuPopupCountSessionsTransfers"};
  return kNames.at(static_cast<std::size_t>(item));
}

/// Lines read like `status 1 "Using a.log"`; CR and LF stand in them as \r and \n. An unscripted message is answered
/// with its default button, an unscripted file dialog is cancelled.
class RecordingView : public MainWindowView {
 public:
  // The script.
  void answerMessage(bool accepted) { m_messageAnswers.push_back(accepted); }
  void answerOpen(FileChoice choice) { m_openAnswers.push_back(std::move(choice)); }
  void answerSave(FileChoice choice) { m_saveAnswers.push_back(std::move(choice)); }
  void chooseOpen(const std::filesystem::path& path, int filterIndex = 1) {
    answerOpen({FileChoice::Outcome::Chosen, path, filterIndex, {}, 0});
  }
  void chooseSave(const std::filesystem::path& path) { answerSave({FileChoice::Outcome::Chosen, path, 1, {}, 0}); }
  void forgetAnswers() { m_saveAnswers.clear(); }
  /// Runs action inside yield number n, counted from 1 over the view's life.
  void atYield(int n, std::function<void()> action) { m_yieldActions[n] = std::move(action); }
  void atEachYield(std::function<void()> action) { m_eachYieldAction = std::move(action); }

  // What happened.
  [[nodiscard]] const std::vector<std::string>& calls() const { return m_calls; }
  [[nodiscard]] std::vector<std::string> callsStartingWith(std::string_view prefix) const {
    std::vector<std::string> found;
    std::copy_if(m_calls.begin(), m_calls.end(), std::back_inserter(found),
                 [prefix](const std::string& call) { return call.starts_with(prefix); });
    return found;
  }
  [[nodiscard]] bool wasCalled(std::string_view call) const {
    return std::find(m_calls.begin(), m_calls.end(), call) != m_calls.end();
  }
  void forgetCalls() { m_calls.clear(); }
  [[nodiscard]] int yieldCount() const { return m_yieldCount; }
  [[nodiscard]] const std::vector<Message>& messages() const { return m_messages; }
  [[nodiscard]] const std::vector<FileRequest>& fileRequests() const { return m_fileRequests; }

  // What the window shows now.
  [[nodiscard]] std::string status(StatusPanel panel) const { return find(m_status, panel); }
  [[nodiscard]] bool isEnabled(MenuItem item) const { return !m_disabled.contains(item); }
  [[nodiscard]] bool isChecked(MenuItem item) const { return m_checked.contains(item); }
  [[nodiscard]] bool isProgressVisible() const { return m_progressVisible; }
  [[nodiscard]] bool isCommandRunning() const { return m_commandRunning; }

  // StatusView
  void setStatusPanel(StatusPanel panel, std::string_view text) override {
    m_status[panel] = text;
    note("status " + std::to_string(static_cast<int>(panel)) + ' ' + quoted(text));
  }
  void showBusyPointer(bool busy) override { note("busy " + onOff(busy)); }

  // ProgressView
  void showProgress(bool visible) override {
    m_progressVisible = visible;
    note("progress " + onOff(visible));
  }
  void setProgressRange(std::int64_t minimum, std::int64_t maximum) override {
    note("progress range " + std::to_string(minimum) + ' ' + std::to_string(maximum));
  }
  void setProgress(std::int64_t value) override { note("progress value " + std::to_string(value)); }
  void showPositionLabels(bool visible) override { note("labels " + onOff(visible)); }
  void setPositionLabels(std::string_view caption, std::string_view position) override {
    note("labels " + quoted(caption) + ' ' + quoted(position));
  }

  // TextView
  void setUserInfo(std::string_view text) override {
    m_userInfo = text;
    note("info " + quoted(text));
  }
  [[nodiscard]] std::string userInfo() const override { return m_userInfo; }
  void setFilterText(std::string_view text) override {
    m_filterText = text;
    note("filter set " + quoted(text));
  }
  void appendFilterText(std::string_view text) override {
    m_filterText += text;
    note("filter append " + quoted(text));
  }
  [[nodiscard]] std::string filterText() const override { return m_filterText; }

  // SessionTreeView
  void treeIsAboutToChange() override { note("tree about to change"); }
  void treeHasChanged() override { note("tree changed"); }
  void treeChecksHaveChanged() override { note("tree checks changed"); }
  void enableTree(bool enabled) override { note("tree enabled " + onOff(enabled)); }
  void showTree(bool visible) override { note("tree visible " + onOff(visible)); }
  void showTreeCheckBoxes(bool visible) override { note("tree boxes " + onOff(visible)); }
  void setTreeHeader(std::string_view text) override { note("tree header " + quoted(text)); }

  // MenuView
  void enableMenuItem(MenuItem item, bool enabled) override {
    if (enabled) {
      m_disabled.erase(item);
    } else {
      m_disabled.insert(item);
    }
    note("enable " + std::string(menuItemName(item)) + ' ' + onOff(enabled));
  }
  void checkMenuItem(MenuItem item, bool checked) override {
    if (checked) {
      m_checked.insert(item);
    } else {
      m_checked.erase(item);
    }
    note("check " + std::string(menuItemName(item)) + ' ' + onOff(checked));
  }
  void popUpTreeMenu() override { note("pop up"); }
  void setCommandRunning(bool running) override {
    m_commandRunning = running;
    note("running " + onOff(running));
  }

  // DialogView
  bool showMessage(const Message& message) override {
    m_messages.push_back(message);
    note("message " + quoted(message.text));
    return take(m_messageAnswers, true);
  }
  [[nodiscard]] FileChoice askOpenFile(const FileRequest& request) override {
    m_fileRequests.push_back(request);
    note("ask open " + quoted(request.filter));
    return take(m_openAnswers, FileChoice{});
  }
  [[nodiscard]] FileChoice askSaveFile(const FileRequest& request) override {
    m_fileRequests.push_back(request);
    note("ask save " + quoted(request.filter));
    return take(m_saveAnswers, FileChoice{});
  }
  void showCounterResult(std::string_view caption, std::string_view text) override {
    note("counter result " + quoted(caption) + ' ' + quoted(text));
  }
  void openAddress(std::string_view address) override { note("address " + quoted(address)); }

  // MainWindowView
  void yield() override {
    ++m_yieldCount;
    note("yield");
    if (m_eachYieldAction) m_eachYieldAction();
    const auto action = m_yieldActions.find(m_yieldCount);
    if (action != m_yieldActions.end()) action->second();
  }
  void closeWindow() override { note("close"); }

 private:
  static std::string onOff(bool on) { return on ? "on" : "off"; }
  static std::string quoted(std::string_view text) {
    std::string line = "\"";
    for (const char c : text) {
      line += c == '\r' ? std::string("\\r") : c == '\n' ? std::string("\\n") : std::string(1, c);
    }
    return line + '"';
  }
  template <typename T>
  static T take(std::deque<T>& answers, T otherwise) {
    if (answers.empty()) return otherwise;
    T answer = std::move(answers.front());
    answers.pop_front();
    return answer;
  }
  static std::string find(const std::map<StatusPanel, std::string>& texts, StatusPanel panel) {
    const auto text = texts.find(panel);
    return text == texts.end() ? std::string() : text->second;
  }
  void note(std::string line) { m_calls.push_back(std::move(line)); }

  std::deque<bool> m_messageAnswers;
  std::deque<FileChoice> m_openAnswers;
  std::deque<FileChoice> m_saveAnswers;
  std::map<int, std::function<void()>> m_yieldActions;
  std::function<void()> m_eachYieldAction;

  std::vector<std::string> m_calls;
  std::vector<Message> m_messages;
  std::vector<FileRequest> m_fileRequests;
  int m_yieldCount = 0;
  std::map<StatusPanel, std::string> m_status;
  std::set<MenuItem> m_disabled;
  std::set<MenuItem> m_checked;
  std::string m_userInfo;
  std::string m_filterText;
  bool m_progressVisible = false;
  bool m_commandRunning = false;
};

}  // namespace quorvel::test
