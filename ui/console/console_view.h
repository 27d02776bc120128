// The view of an unattended run: problems and progress on one text stream, nobody to ask.
#pragma once

#include <chrono>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>

#include "app/view.h"

namespace quorvel {

class ConsoleView final : public MainWindowView {
 public:
  static constexpr std::chrono::milliseconds kRedrawInterval{100};

  enum class Progress {
    Hidden,
    Shown,  ///< one line that is rewritten in place; for a terminal
  };

  /// out must outlive the view.
  ConsoleView(std::ostream& out, Progress progress) : m_out(out), m_drawsProgress(progress == Progress::Shown) {}

  /// Called by every yield, on the same thread: the place to stop a command from.
  void onYield(std::function<void()> action) { m_onYield = std::move(action); }

  // StatusView
  void setStatusPanel(StatusPanel panel, std::string_view text) override;
  void showBusyPointer(bool) override {}
  void showLogName(std::string_view) override {}

  // ProgressView
  void showProgress(bool visible) override;
  void setProgressRange(std::int64_t minimum, std::int64_t maximum) override;
  void setProgress(std::int64_t value) override { m_value = value; }
  void showPositionLabels(bool) override {}
  void setPositionLabels(std::string_view caption, std::string_view position) override;
  void showResult(std::string_view) override {}

  // TextView: there are no text boxes, nothing is kept.
  void setUserInfo(std::string_view) override {}
  [[nodiscard]] std::string userInfo() const override { return {}; }
  void setFilterText(std::string_view) override {}
  void appendFilterText(std::string_view) override {}
  [[nodiscard]] std::string filterText() const override { return {}; }

  // SessionTreeView
  [[nodiscard]] bool hasTree() const override { return false; }
  void treeIsAboutToChange() override {}
  void treeHasChanged() override {}
  void treeChecksHaveChanged() override {}
  void enableTree(bool) override {}
  void showTree(bool) override {}
  void showTreeCheckBoxes(bool) override {}
  void setTreeHeader(std::string_view) override {}

  // MenuView
  void enableMenuItem(MenuItem, bool) override {}
  void checkMenuItem(MenuItem, bool) override {}
  void popUpTreeMenu() override {}
  void setCommandRunning(bool) override {}

  // DialogView: a message is one line "quorvel: text", answered with OK or Yes; file dialogs are cancelled.
  bool showMessage(const Message& message) override;
  [[nodiscard]] FileChoice askOpenFile(const FileRequest&) override { return {}; }
  [[nodiscard]] FileChoice askSaveFile(const FileRequest&) override { return {}; }
  void showCounterResult(std::string_view, std::string_view) override {}
  void openAddress(std::string_view) override {}

  // MainWindowView
  void yield() override;
  void closeWindow() override {}

 private:
  [[nodiscard]] std::string progressText() const;
  void drawProgress();
  void clearProgress();

  std::ostream& m_out;
  bool m_drawsProgress;
  std::function<void()> m_onYield;

  std::string m_status;
  std::string m_position;  ///< caption and number
  std::int64_t m_minimum = 0;
  std::int64_t m_maximum = 0;
  std::int64_t m_value = 0;
  bool m_progressVisible = false;
  std::size_t m_drawnWidth = 0;  ///< columns of the terminal's line that hold our text
  std::chrono::steady_clock::time_point m_nextDraw;
};

}  // namespace quorvel
