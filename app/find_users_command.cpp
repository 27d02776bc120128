#include "app/find_users_command.h"

#include <array>
#include <string>
#include <tuple>

#include "app/command_report.h"
#include "app/error_log.h"
#include "app/menu_groups.h"
#include "app/needed_files.h"
#include "app/tree_commands.h"
#include "app/web_commands.h"
#include "classic/find/current_sessions.h"
#include "classic/find/servu_find_user_info.h"
#include "classic/find/users_file.h"
#include "log/log_file.h"
#include "log/text.h"

namespace quorvel {
namespace {

/// How far the command has come; shown when it fails, for the bug report.
enum class CodePoint {
  Begin = 10,
  HasLog = 20,
  DeleteUsersFile = 30,
  DeleteWorkingFiles = 40,
  ShowProgress = 50,
  Scan = 60,
  HideProgress = 70,
  EnableMenus = 80,
};

/// Puts the sessions of a scan into the users file and shows how far it has come.
class ScanRecorder final : public FindObserver {
 public:
  ScanRecorder(CommandContext& context, ErrorLog& errorLog, std::size_t slotSize)
      : m_context(context),
        m_errorLog(errorLog),
        m_writer(
            context.files, context.state.usersFilePath(),
            [&context, &errorLog, usersFile = context.state.usersFilePath()](
                const UserAct& record, std::int32_t recordNumber, const Error& error) {
              context.state.errorsLogged = true;
              // A record that does not fit is a matter of the log, any other trouble one of this run.
              if (context.state.batchFlag && error.code != ErrorCode::BadRecordLength) context.state.batchFailed = true;
              errorLog.recordNotSaved(context.state.logPath, usersFile, record, recordNumber, error);
            },
            slotSize) {}

  void onSession(const FoundSession& session) override {
    m_writer.WriteSessionRecord(session.record, session.LogonNo);
    m_logons = session.LogonNo;
    m_lastSession = session.position;
    m_foundSinceRead = true;
  }

  bool keepGoing(LogPosition position) override {
    // The log is read ahead of the sessions handed out: how far shows only where reading finds no session.
    const LogPosition reached = m_foundSinceRead ? m_lastSession : position;
    if (position != m_lastSession) m_foundSinceRead = false;
    if (!m_context.pacer.isDueAmongMany()) return true;
    flush();  // other programs see complete records whenever the interface runs
    show(reached);
    m_context.view.yield();
    return !m_context.state.stopFlag;
  }

  [[nodiscard]] bool foundAny() const { return m_logons > 0; }

  /// To be called at the end of the scan, whatever ended it.
  void finish() {
    flush();
    showLogons();
  }

 private:
  void flush() {
    m_writer.flush();
    m_errorLog.flush();
  }
  void show(LogPosition reached) {
    m_context.view.setPositionLabels("Current position:", std::to_string(reached));
    m_context.view.setProgress(reached);
    showLogons();
  }
  void showLogons() { m_context.view.setStatusPanel(StatusPanel::Logons, "Logons: " + std::to_string(m_logons)); }

  CommandContext& m_context;
  ErrorLog& m_errorLog;
  UsersFileWriter m_writer;
  std::int32_t m_logons = 0;
  LogPosition m_lastSession = 1;  ///< where the scan begins, then the session found last
  bool m_foundSinceRead = true;
};

class FindUsers {
 public:
  explicit FindUsers(CommandContext& context)
      : m_context(context), m_errorLog(context.files, context.state.programFolder) {}

  void run() {
    m_context.state.errorsLogged = false;
    if (m_context.state.logPath.empty()) return;
    const auto log = openNeededLog(m_context);
    if (!log) return;
    enter(CodePoint::HasLog);
    const Status done = prepareAndScan(*log);
    if (!done.isOk()) {
      hideProgress();
      return report(done.error());
    }
    enter(CodePoint::HideProgress);
    hideProgress();
    enter(CodePoint::EnableMenus);
    EnDis::enableSessionMenus(m_context.view);
    tellOfLoggedErrors();
  }

 private:
  void enter(CodePoint point) { m_codePoint = point; }

  Status prepareAndScan(const LogFile& log) {
    const auto& folder = m_context.state.workingFolder;
    enter(CodePoint::DeleteUsersFile);
    if (Status deleted = deleteFile(m_context.state.usersFilePath()); !deleted.isOk()) return deleted;
    enter(CodePoint::DeleteWorkingFiles);
    for (const char* name : {"test.qva", "test.qv2"})
      if (Status deleted = deleteFile(folder / name); !deleted.isOk()) return deleted;
    enter(CodePoint::ShowProgress);
    showProgress();
    enter(CodePoint::Scan);
    return m_context.state.logType == LogType::WarFtpd ? Status() : scan(log);
  }

  Status deleteFile(const std::filesystem::path& path) {
    return m_context.files.Exist(path) ? m_context.files.remove(path) : Status();
  }

  void showProgress() {
    m_context.view.setStatusPanel(StatusPanel::Text, "Searching " + m_context.state.logTitle);
    m_context.view.showProgress(true);
    m_context.view.showPositionLabels(true);
  }

  void hideProgress() {
    m_context.view.setProgress(0);
    m_context.view.showProgress(false);
    m_context.view.showPositionLabels(false);
    m_context.view.setStatusPanel(StatusPanel::Text, "Using " + m_context.state.logTitle);
  }

  Status scan(const LogFile& log) {
    clearSessionTree(m_context);
    m_context.state.stopFlag = false;
    createUsersFile();
    m_context.view.setProgressRange(0, log.length() + 1);
    const FindOptions options{.trunkLongUsernames = m_context.settings.readFlag("MAIN", "TrunkLongUsernames")};
    const bool isCurrent = m_context.state.logShape == LogShape::Current;
    ScanRecorder recorder(m_context, m_errorLog, isCurrent ? currentSlotSize(options) : slotSizeFor(log.length()));
    const auto end =
        isCurrent ? findCurrentSessions(log, options, recorder) : ServuFindUserInfo(log, options, recorder);
    recorder.finish();
    if (!end.isOk()) return end.error();
    finishScan(end.value());
    if (end.value() == FindEnd::Finished && !recorder.foundAny()) tellOfNoSessions(log.length() == 0);
    return {};
  }

  /// A log without sessions has an empty users file, not a lost one. The first record reports what keeps it from being
  /// written.
  void createUsersFile() {
    std::ignore = m_context.files.open(m_context.state.usersFilePath(), OpenMode::ReadWrite, Owner::Program);
  }

  void finishScan(FindEnd end) {
    if (end == FindEnd::Stopped) {
      m_context.state.stopFlag = false;
      return;
    }
    buildSessionTree(m_context);
  }

  /// Where a session would be shown: what stands there belongs to none of this log.
  void tellOfNoSessions(bool isEmpty) {
    m_context.state.currentSession = {};
    m_context.view.setFilterText({});
    const std::string reason = isEmpty ? " is empty."
                                       : " is not a log that this program reads, or nobody has connected yet: no line "
                                         "of it tells of a connection.";
    m_context.view.setUserInfo("No sessions found" + std::string(kLineEnd) + std::string(kLineEnd) +
                               m_context.state.logTitle + reason);
  }

  void tellOfLoggedErrors() {
    if (!m_context.state.errorsLogged) return;
    m_context.view.showMessage({.text = "One or more errors where generated while searching throuhg the logfile." +
                                        std::string(kLineEnd) +
                                        "Please look in the file error.log for more information."});
  }

  void report(const Error& error) {
    const bool isAboutLog = error.file == m_context.state.logPath;
    if (m_context.state.batchFlag || isAboutLog) return reportFailure(m_context, error.sentence());
    if (m_context.view.showMessage({.text = errorText(error), .buttons = Buttons::OkCancel})) reportBug(m_context.view);
  }

  [[nodiscard]] std::string errorText(const Error& error) const {
    const std::array<std::string, 8> lines{"VB error: " + std::to_string(error.number()) + " " + error.description(),
                                           "Trying to acces file:",
                                           pathText(m_context.state.usersFilePath()),
                                           "it cannot be found.",
                                           "",
                                           "Code point: " + std::to_string(static_cast<int>(m_codePoint)),
                                           "",
                                           "Please report this bug by email, add the above information to the mail."};
    std::string text;
    for (const std::string& line : lines)
      text.append(line).append(kLineEnd);
    return text.append("Click OK to report, Cancel to abort").append(kLineEnd);
  }

  CommandContext& m_context;
  ErrorLog m_errorLog;
  CodePoint m_codePoint = CodePoint::Begin;
};

}  // namespace

void findUsers(CommandContext& context) {
  const CommandGuard guard(context);
  if (!guard) return;
  FindUsers(context).run();
}

}  // namespace quorvel
