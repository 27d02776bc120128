// The main window: binds every menu item to its command. Knows no toolkit; a view draws it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

#include "app/command_context.h"

namespace quorvel {

/// Position and size of a window on the screen, in pixels.
struct WindowBounds {
  int top = 0;
  int left = 0;
  int width = 0;
  int height = 0;
  friend bool operator==(const WindowBounds&, const WindowBounds&) = default;
};

/// Where the window is to appear: all four bounds at least 1, else it is centred at its default size.
struct WindowPlacement {
  bool isCentred = true;
  WindowBounds bounds;
  bool isMaximized = false;
};

class frmMain {
 public:
  /// All arguments must outlive the window. workingFolder: the one of this process; empty: the program folder.
  frmMain(FileSystem& files, Settings& settings, MainWindowView& view, Pacer& pacer,
          const std::filesystem::path& programFolder, const std::filesystem::path& workingFolder = {});
  frmMain(const frmMain&) = delete;
  frmMain& operator=(const frmMain&) = delete;

  [[nodiscard]] MainWindowState& state() { return m_state; }
  [[nodiscard]] CommandContext& context() { return m_context; }

  /// Start-up after the settings file is in place: header labels, menu states, status panel, check boxes.
  void load();
  [[nodiscard]] WindowPlacement readPlacement() const;
  /// Shutdown: deletes the users file, saves the window's normal bounds. While a command runs it only stops that and
  /// asks the view to close, which unloads once more when the command is done.
  void unload(const WindowBounds& normalBounds, bool isMaximized);
  /// Shutdown of a run without a window: the same, but the bounds saved earlier stay.
  void unload();

  // File menu
  void mnuOpenLogFile_Click();
  /// Opens a log without the dialog (a file dropped on the window). The log type is the one last chosen.
  void openLogFile(const std::filesystem::path& path);
  /// Makes a log the open one and changes no setting: state, status panels 1 and 2, the filter and count menus. title
  /// is the name to show, in Windows-1252. Nothing is left of the log before. Part of every way to open a log.
  void useLog(const std::filesystem::path& path, std::string_view title, LogType type);
  void mnuSaveShortInfo_Click();
  void mnuSaveFilterWindow_Click();

  // Commands menu
  void mnuFindUsers_Click();
  /// Sets the Stop flag, nothing else.
  void mnuStop_Click();
  void mnuFilterAll_Click();
  void mnuFilterSelected_Click();
  void mnuFilterIP_Click();
  void mnuFilterUser_Click();
  void mnuFilterSession_Click();
  void mnuReloadTreeView_Click();
  /// No menu item of its own: the unattended run and the window's tool bar use it.
  void toggleAutoFilter();

  // Counters menu
  void mnuCountAllTransfers_Click();
  void mnuCountSelectedSessions_Click();
  void mnuCountIPTransfers_Click();
  void mnuCountUsersTransfers_Click();
  void mnuCountSessionsTransfers_Click();
  /// The counter result window's paste button: adds the result, under the caption in upper case, to the filter window.
  void cmdPasteResultTortbFilter_Click(std::string_view caption, std::string_view text);

  // Tree and its pop-up menu
  void TreeView1_NodeClick(std::int32_t node);
  void TreeView1_RightButton();
  void setNodeChecked(std::int32_t node, bool checked);
  void mnuShowUsernameLogontime_Click();
  void mnuShowUsernameIP_Click();
  void mnuShowIPUsername_Click();
  void mnuShowIPLogontime_Click();
  void mnuShowCheckboxesInTreeView_Click();
  void mnuTreeViewUncheckAll_Click();

  // Web menu
  void mnuWebVisitWebsite_Click();
  void mnuWebSendEmail_Click();
  void mnuWebReportBug_Click();

 private:
  MainWindowState m_state;
  CommandContext m_context;
};

}  // namespace quorvel
