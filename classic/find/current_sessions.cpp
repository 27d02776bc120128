#include "classic/find/current_sessions.h"

#include <string>
#include <vector>

#include "activity/read_activity.h"
#include "classic/find/user_act.h"
#include "grammar/serv_u_words.h"
#include "log/log_file_source.h"

namespace quorvel {
namespace {

/// `[02] Tue 19Jan21 00:18:26 - `: what stands in front of a session number.
constexpr LogPosition kFront = 5 + kStampLength + 3;
constexpr std::size_t kLongestKept = 255;  ///< of a name or address

std::string numberOf(const Activity& activity, const SessionRow& session) {
  return "(" + std::string(activity.text(session.key)) + ")";
}

std::string_view wordOf(LogonResult result) {
  switch (result) {
    case LogonResult::BadPassword:
      return kBadPassword;
    case LogonResult::RefusedAddress:
      return kUnauthorizedIp;
    case LogonResult::NoHome:
      return kHomeDirNotFound;
    default:
      return kNotLoggedIn;
  }
}

class RecordMaker {
 public:
  RecordMaker(const Activity& activity, const FindOptions& options)
      : m_activity(activity), m_options(options), m_decided(activity.sessions.size(), kNoTime) {
    for (std::size_t i = 0; i < activity.logons.size(); ++i) {
      const LogonRow& logon = activity.logons[i];
      LogTime& decided = m_decided[logon.session];
      if (decided == kNoTime && logon.result == activity.sessions[logon.session].outcome) decided = logon.time;
    }
  }

  [[nodiscard]] UserAct record(RowNumber number) const {
    const SessionRow& session = m_activity.sessions[number];
    UserAct record;
    record.Position = positionOf(m_activity, session);
    record.LastPosition = static_cast<LogPosition>(session.lastPosition);
    record.Name = name(session);
    record.NumberInLog = numberOf(m_activity, session);
    record.IP = m_activity.text(session.address).substr(0, kLongestKept);
    record.ConnectTime = servUStamp(session.connected);
    record.LogonTime = logonTime(session, m_decided[number]);
    record.LogoffTime = logoffTime(session);
    record.LogonNo = static_cast<std::int32_t>(number) + 1;
    return record;
  }

 private:
  [[nodiscard]] std::string name(const SessionRow& session) const {
    const std::string_view name = m_activity.text(session.user);
    if (name.empty()) return session.end == SessionEnd::Open ? kNoUserFound : kQuit;
    return std::string(m_options.trunkLongUsernames ? trunkedName(name) : name.substr(0, kLongestKept));
  }

  [[nodiscard]] static std::string logonTime(const SessionRow& session, LogTime refused) {
    const bool isClosed = session.end == SessionEnd::Closed;
    if (session.outcome == LogonResult::LoggedOn) return servUStamp(session.loggedOn);
    if (refused != kNoTime) return servUStamp(refused).append(wordOf(session.outcome));
    if (session.user == kNoText && isClosed) return servUStamp(session.ended);
    if (session.user == kNoText && session.end == SessionEnd::Open) return servUStamp(session.connected);
    return (isClosed ? servUStamp(session.ended) : std::string()).append(kNotLoggedIn);
  }

  [[nodiscard]] static std::string logoffTime(const SessionRow& session) {
    switch (session.end) {
      case SessionEnd::Open:
        return kNotLoggedOut;
      case SessionEnd::ServerStart:
        return kServerRestart;
      case SessionEnd::Closed:
        break;
    }
    return servUStamp(session.ended);
  }

  const Activity& m_activity;
  const FindOptions m_options;
  std::vector<LogTime> m_decided;  ///< by session: the first attempt that ended as its outcome says, as in classic logs
};

}  // namespace

Result<FindEnd> findCurrentSessions(const LogFile& log, const FindOptions& options, FindObserver& observer) {
  const auto tables = readCurrentLog(log, [&observer](LogPosition readTo) { return observer.keepGoing(readTo); });
  if (!tables.isOk()) return tables.error();
  const Activity& activity = tables.value();
  const bool isComplete = activity.logs.front().isComplete;
  const RecordMaker maker(activity, options);
  for (RowNumber number = 0; number < activity.sessions.size(); ++number) {
    const UserAct record = maker.record(number);
    observer.onSession({record.LogonNo, record.Position, encodeRecord(record, currentSlotSize(options))});
    if (isComplete && !observer.keepGoing(record.Position)) return FindEnd::Stopped;
  }
  return isComplete ? FindEnd::Finished : FindEnd::Stopped;
}

Result<Activity> readCurrentLog(const LogFile& log, const std::function<bool(LogPosition)>& keepGoing) {
  LogFileSource source(log);
  ActivityReader reader;
  ReadOptions options;
  options.keepGoing = [&keepGoing](const ReadProgress& progress) {
    return keepGoing(static_cast<LogPosition>(progress.bytesRead));
  };
  if (const Status read = reader.read(source, options); !read.isOk()) return read.error();
  return reader.snapshot();
}

LogPosition positionOf(const Activity& activity, const SessionRow& session) {
  const auto numberLength = static_cast<LogPosition>(numberOf(activity, session).size());
  return static_cast<LogPosition>(session.position) + kFront + numberLength - 1;
}

}  // namespace quorvel
