// The main window on the screen: menus, panes and status bar, bound to the commands of frmMain.
#pragma once

#include <QMainWindow>
#include <array>
#include <memory>

#include "app/main_window.h"
#include "app/view.h"

class QSettings;
class QShortcut;

namespace quorvel {

class FileDialogs;
class SessionTreePage;
class Menus;
class Pages;
class OneLineLabel;
class SessionTreeModel;

/// Draws what the commands say and hands them what the user does; it decides nothing itself. The window and its
/// commands know each other: make the window, make frmMain on it, connect them, and disconnect before frmMain goes.
class MainWindow final : public QMainWindow, public MainWindowView {
  Q_OBJECT

 public:
  /// dialogs must outlive the window.
  explicit MainWindow(FileDialogs& dialogs);
  ~MainWindow() override;

  void connectCommands(frmMain& commands);
  void disconnectCommands();
  /// Before the window is shown.
  void applyStoredPlacement();

  [[nodiscard]] SessionTreePage& sessionTreePage() { return *m_sessionTreePage; }
  [[nodiscard]] Pages& pages() { return *m_pages; }
  [[nodiscard]] Menus& menus() { return *m_menus; }
  [[nodiscard]] QString statusText(StatusPanel panel) const;
  /// A close was asked for while a command runs; the window closes when the command has stopped.
  [[nodiscard]] bool isClosing() const { return m_isClosing; }

  // StatusView
  void setStatusPanel(StatusPanel panel, std::string_view text) override;
  void showBusyPointer(bool busy) override;
  void showLogName(std::string_view name) override;
  // ProgressView
  void showProgress(bool visible) override;
  void setProgressRange(std::int64_t minimum, std::int64_t maximum) override;
  void setProgress(std::int64_t value) override;
  void showPositionLabels(bool visible) override;
  void setPositionLabels(std::string_view caption, std::string_view position) override;
  void showResult(std::string_view text) override;
  // TextView
  void setUserInfo(std::string_view text) override;
  [[nodiscard]] std::string userInfo() const override;
  void setFilterText(std::string_view text) override;
  void appendFilterText(std::string_view text) override;
  [[nodiscard]] std::string filterText() const override;
  // SessionTreeView
  void treeIsAboutToChange() override;
  void treeHasChanged() override;
  void treeChecksHaveChanged() override;
  void enableTree(bool enabled) override;
  void showTree(bool visible) override;
  void showTreeCheckBoxes(bool visible) override;
  void setTreeHeader(std::string_view text) override;
  // MenuView
  void enableMenuItem(MenuItem item, bool enabled) override;
  void checkMenuItem(MenuItem item, bool checked) override;
  void popUpTreeMenu() override;
  void setCommandRunning(bool running) override;
  // DialogView
  bool showMessage(const Message& message) override;
  [[nodiscard]] FileChoice askOpenFile(const FileRequest& request) override;
  [[nodiscard]] FileChoice askSaveFile(const FileRequest& request) override;
  void showCounterResult(std::string_view caption, std::string_view text) override;
  void openAddress(std::string_view address) override;
  // MainWindowView
  void yield() override;
  void closeWindow() override;

 signals:
  void closed();

 protected:
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void addStatusPanels();
  void connectTree();
  void connectPages();
  void addPageKeys();
  void onPageChanged();
  /// Finds the sessions where that was not done yet, and clicks the one that begins there.
  void showInTree(quint64 position);
  void onChosen(MenuItem item);
  void onTreeMenuRequested(const QPoint& position);
  [[nodiscard]] bool commandRuns() const;
  void stopCommand();

  FileDialogs& m_dialogs;
  frmMain* m_commands = nullptr;
  Menus* m_menus;
  SessionTreePage* m_sessionTreePage;
  Pages* m_pages;
  std::array<OneLineLabel*, 4> m_panels{};
  QList<QShortcut*> m_pageKeys;  // that mean something else on the session tree
  QShortcut* m_stopShortcut;     // Esc, only while a command runs
  std::unique_ptr<SessionTreeModel> m_treeModel;
  std::unique_ptr<QSettings> m_pageSettings;  // pages.ini: what the pages keep from one start to the next
  QPoint m_treeMenuPosition;
  bool m_treeHadFocus = false;  // when it was disabled
  bool m_isClosing = false;
};

}  // namespace quorvel
