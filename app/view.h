// What the commands need of a window, in the program's own words. The Qt window, the console and the recording view
// of the tests implement it. All texts are bytes in Windows-1252 and are shown as plain text, whatever they contain.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "log/result.h"

namespace quorvel {

enum class StatusPanel {
  Text = 1,           ///< what the program is doing
  LogType = 2,        ///< "Serv-U log file"
  Logons = 3,         ///< "Logons: 12"
  FilterOptions = 4,  ///< "Filter options: AT"
};

class StatusView {
 public:
  virtual ~StatusView() = default;
  virtual void setStatusPanel(StatusPanel panel, std::string_view text) = 0;
  virtual void showBusyPointer(bool busy) = 0;
  /// The name of the log that was opened, e.g. for the title bar.
  virtual void showLogName(std::string_view name) = 0;
};

/// Progress bar and the two position labels below it ("Current position:" and a number).
class ProgressView {
 public:
  virtual ~ProgressView() = default;
  virtual void showProgress(bool visible) = 0;
  /// Sets the range [minimum, maximum] and the value to minimum.
  virtual void setProgressRange(std::int64_t minimum, std::int64_t maximum) = 0;
  virtual void setProgress(std::int64_t value) = 0;
  virtual void showPositionLabels(bool visible) = 0;
  virtual void setPositionLabels(std::string_view caption, std::string_view position) = 0;
  /// Tells in one line, in the place of the progress bar, what a command did. It stays until the next command begins.
  virtual void showResult(std::string_view text) = 0;
};

/// The two text boxes on the right: what is known of the session shown, and the filter window.
class TextView {
 public:
  virtual ~TextView() = default;
  virtual void setUserInfo(std::string_view text) = 0;
  [[nodiscard]] virtual std::string userInfo() const = 0;
  virtual void setFilterText(std::string_view text) = 0;
  /// Adds to the end; a long text arrives in pieces with yields between them.
  virtual void appendFilterText(std::string_view text) = 0;
  [[nodiscard]] virtual std::string filterText() const = 0;
};

/// The drawing of the session tree. The nodes themselves are a SessionTree that the view reads; between
/// treeIsAboutToChange() and treeHasChanged() it must not look at them.
class SessionTreeView {
 public:
  virtual ~SessionTreeView() = default;
  /// False where nothing is drawn and nothing can be clicked: no tree is built then.
  [[nodiscard]] virtual bool hasTree() const { return true; }
  virtual void treeIsAboutToChange() = 0;
  virtual void treeHasChanged() = 0;
  /// The check boxes of any number of nodes changed, the nodes did not.
  virtual void treeChecksHaveChanged() = 0;
  virtual void enableTree(bool enabled) = 0;
  /// Hides the tree behind the label "Hiding TreeView for faster operation. Please wait...", or shows it again.
  virtual void showTree(bool visible) = 0;
  virtual void showTreeCheckBoxes(bool visible) = 0;
  /// The two lines above the tree that name its layout, e.g. "Username" CR LF "|--Logontime".
  virtual void setTreeHeader(std::string_view text) = 0;
};

/// Every menu item a command switches, in the order of the menu bar, then the tree's pop-up menu.
enum class MenuItem {
  mnuOpenLogFile,
  mnuSaveShortInfo,
  mnuSaveFilterWindow,
  mnuPrint,
  mnuExit,
  mnuFindUsers,
  mnuStop,
  mnuFilterAll,
  mnuFilterSelected,
  mnuFilterIP,
  mnuFilterUser,
  mnuFilterSession,
  mnuReloadTreeView,
  mnuCountAllTransfers,
  mnuCountSelectedSessions,
  mnuCountIPTransfers,
  mnuCountUsersTransfers,
  mnuCountSessionsTransfers,
  mnuGotoPosition,
  mnuGetComputersIP,
  mnuTreeViewUncheckAll,
  mnuOptions,
  mnuHelpCommandLineReference,
  mnuWebVisitWebsite,
  mnuWebSendEmail,
  mnuWebReportBug,
  mnuAbout,
  mnuShowUsernameLogontime,
  mnuShowUsernameIP,
  mnuShowIPUsername,
  mnuShowIPLogontime,
  mnuReloadTreeView02,
  mnuShowCheckboxesInTreeView,
  mnuTreeViewUncheckAll02,
  mnuPopupCountSessionsTransfers,
};

class MenuView {
 public:
  virtual ~MenuView() = default;
  virtual void enableMenuItem(MenuItem item, bool enabled) = 0;
  virtual void checkMenuItem(MenuItem item, bool checked) = 0;
  /// Opens the tree's pop-up menu where the user asked for it.
  virtual void popUpTreeMenu() = 0;
  /// A command that must not be nested begins or ends: while it runs, only Stop and Exit can be chosen.
  virtual void setCommandRunning(bool running) = 0;
};

enum class Buttons {
  Ok,
  OkCancel,
  YesNo,
};

/// A message box. An empty title stands for the program's name.
struct Message {
  std::string text;
  Buttons buttons = Buttons::Ok;
  std::string title{};
};

/// What a save dialog does about a file that is there already.
enum class ExistingFile {
  Taken,           ///< without a question
  AskedToReplace,  ///< asks, and says that it is replaced
  AskedToAppend,   ///< asks, and says that what is in it stays
};

/// What a file dialog offers. filter is one entry "description|pattern", the description in the program's own words.
struct FileRequest {
  std::string title;  ///< empty: the dialog's own
  std::string filter;
  int filterIndex = 1;
  std::filesystem::path folder;
  bool fileMustExist = false;
  ExistingFile existing = ExistingFile::Taken;
};

/// What came out of a file dialog. path is absolute; filterIndex is the request's unless the user chose another.
struct FileChoice {
  enum class Outcome {
    Chosen,
    Cancelled,
    Failed,
  };
  Outcome outcome = Outcome::Cancelled;
  std::filesystem::path path;
  int filterIndex = 1;
  std::string error;    ///< with Failed: what went wrong
  int errorNumber = 0;  ///< with Failed
};

class DialogView {
 public:
  virtual ~DialogView() = default;
  /// Returns true for OK or Yes. Blocks until answered; a console answers with the default button.
  virtual bool showMessage(const Message& message) = 0;
  [[nodiscard]] virtual FileChoice askOpenFile(const FileRequest& request) = 0;
  [[nodiscard]] virtual FileChoice askSaveFile(const FileRequest& request) = 0;
  /// Shows the counter result window and blocks until it is closed.
  virtual void showCounterResult(std::string_view caption, std::string_view text) = 0;
  /// Hands a web or mailto address to the desktop and does not wait. The address is ours and may hold blanks: it is
  /// handed over as it stands wherever the desktop takes it so. Failure is silent.
  virtual void openAddress(std::string_view address) = 0;
};

/// Everything the main window's commands talk to.
class MainWindowView : public StatusView,
                       public ProgressView,
                       public TextView,
                       public SessionTreeView,
                       public MenuView,
                       public DialogView {
 public:
  /// Lets pending events of the interface run: repainting, Stop. Commands call it about every 20 ms.
  virtual void yield() = 0;
  /// Closes the window when the running command is done; in a window this ends the program.
  virtual void closeWindow() = 0;
};

}  // namespace quorvel
