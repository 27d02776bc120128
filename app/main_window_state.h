// What the main window's commands share.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "app/filter_memory.h"
#include "classic/find/log_shape.h"
#include "classic/find/user_act.h"
#include "classic/tree/session_tree.h"

namespace quorvel {

/// Values are stored in the settings, do not change.
enum class LogType {
  None = 0,
  ServU = 1,     ///< "Serv-U log file"
  ServU25a = 2,  ///< "Serv-U 2.5a + log file"
  WarFtpd = 3,   ///< "WAR FTPD log file"; no finder reads it
};

struct MainWindowState {
  std::filesystem::path programFolder;
  std::filesystem::path workingFolder;  ///< of this process alone, see WorkingFolder

  std::filesystem::path logPath;  ///< empty: no log chosen yet
  std::string logTitle;           ///< its name without folder
  LogType logType = LogType::None;
  std::string logTypeName;                ///< what status panel 2 shows
  LogShape logShape = LogShape::Classic;  ///< as a command found it when it opened the log

  UserAct currentSession;         ///< the session clicked last, or the last one a command read
  std::int32_t selectedNode = 0;  ///< node of the tree clicked last; 0: none
  SessionTree tree;
  FilterMemory filterMemory;
  std::string keptLayout;  ///< the layout stored when the tree's pop-up menu was last opened
  bool showsCheckBoxes = false;
  bool layoutChanged = false;  ///< set by the options dialog

  bool stopFlag = false;        ///< set by Stop, cleared by the command that obeys
  bool errorsLogged = false;    ///< the last scan wrote to error.log
  bool commandRunning = false;  ///< commands do not nest
  std::filesystem::path resultsFile;

  bool batchFlag = false;  ///< an unattended run is in progress: no dialogs, results go to the output file
  std::filesystem::path batchOutputFile;
  std::string BatchFilterIP;
  std::string BatchFilterUser;
  std::string BatchCountIP;
  std::string BatchCountUser;
  std::string batchDescription;  ///< what the next count counts, e.g. "IP: 10.0.0.5"
  bool batchFailed = false;      ///< a command of the run could not do its work; decides the exit status
  bool batchReaderGone = false;  ///< nobody reads the results any more: the run is to end

  [[nodiscard]] bool hasLog() const { return !logPath.empty(); }
  [[nodiscard]] std::filesystem::path usersFilePath() const { return workingFolder / "users.qva"; }
  [[nodiscard]] std::filesystem::path filterFilePath() const { return workingFolder / "filter.qva"; }
  [[nodiscard]] std::filesystem::path badTransfersPath() const { return programFolder / "bad_trans.txt"; }
};

}  // namespace quorvel
