#include "core/servu_find_user_info.h"

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>

#include "core/log_search.h"

namespace quorvel {
namespace {

constexpr LogPosition kConnectStampBack = 30;  ///< from the ")" back to the line's stamp
constexpr LogPosition kStampBack = 21;         ///< from the "- " in front of a session number back to the stamp
constexpr LogPosition kIpForward = 15;         ///< from the ")" to the address behind " Connected to "
constexpr LogPosition kNameForward = 14;       ///< from a session number to the name behind it and " USER "
constexpr LogPosition kCloseReach = 100;       ///< how much further than the others one search reaches
constexpr LogPosition kNextSession = 60;       ///< from one ")" to where the search for the next connect line starts
constexpr std::size_t kTrunkedName = 12;
constexpr LogPosition kLongestText = 32767;  ///< of a name or address; a record holds far less

/// Makes one record after the other. The steps of a session stand in the order in which they are decided.
class Finder {
 public:
  Finder(const LogFile& log, const FindOptions& options, FindObserver& observer)
      : m_log(log), m_options(options), m_observer(observer), m_search(log, searchOptions(options, observer)) {}

  Result<FindEnd> run() {
    LogPosition position = 1;
    while (position < m_log.length() && m_search.FindForward(position)) {
      if (m_session.position > std::numeric_limits<std::int32_t>::max()) return FindEnd::Overflow;
      fillRecord();
      if (!m_search.status().isOk()) return m_search.status().error();
      if (m_search.wasStopped()) return FindEnd::Stopped;
      m_observer.onSession(m_record);
      position = m_session.position + kNextSession;
      if (!m_observer.keepGoing(m_session.position)) return FindEnd::Stopped;
    }
    if (!m_search.status().isOk()) return m_search.status().error();
    return m_search.wasStopped() ? FindEnd::Stopped : FindEnd::Finished;
  }

 private:
  static LogSearch::Options searchOptions(const FindOptions& options, FindObserver& observer) {
    return {options.blockSize, options.trunkLongUsernames ? kTrunkedName : kLongestIndexedName,
            [&observer](LogPosition readTo) { return observer.keepGoing(readTo); }};
  }

  void fillRecord() {
    const LogPosition position = m_session.position;
    m_record.Position = static_cast<std::int32_t>(position);
    m_record.ConnectTime = text(position - kConnectStampBack, kStampLength);
    m_record.NumberInLog = text(position - (kSessionNumberLength - 1), kSessionNumberLength);
    readUpTo(' ', position + kIpForward, kLongestText, m_record.IP);
    findLogoff();
    findLogon(findName());
    ++m_record.LogonNo;
  }

  void findLogoff() {
    m_end = m_search.FindSessionEnd();
    const LogPosition stamp = m_end.position - kStampBack;
    if (!m_end.isServerStart && stamp <= 0) {
      m_record.LogoffTime = kNotLoggedOut;
    } else if (m_end.isServerStart && stamp >= 0) {
      m_record.LogoffTime = kServerRestart;
    } else {
      m_record.LogoffTime = text(stamp, kStampLength);
    }
  }

  /// Returns what is now the record's name.
  std::string_view findName() {
    const LogPosition user = find(Event::User);
    const LogPosition quit = find(Event::Quit);
    std::string_view word;
    if (user == 0 && quit == 0) word = kNoUserFound;
    if (quit > 0 && (quit < user || m_end.position < user)) word = kQuit;
    if (user == 0 && (quit > 0 || m_end.position >= 1)) word = kQuit;
    if (!word.empty()) {
      m_record.Name = word;
      return word;
    }
    const LogPosition longest = m_options.trunkLongUsernames ? LogPosition{kTrunkedName} : kLongestText;
    readUpTo(m_log.lineEnd(), user + kNameForward, longest, m_record.Name);
    return m_record.Name;
  }

  void findLogon(std::string_view name) {
    const LogPosition logon = findLogonLine(name);
    if (logon > 0) {
      m_record.LogonTime = text(logon - kStampBack, kStampLength);
      return;
    }
    const char* word = kNotLoggedIn;
    LogPosition decided = findFailure(word);
    const LogPosition close = m_search.FindForwardLimited(Event::Close, m_end.position + kCloseReach);
    const LogPosition quit = find(Event::Quit);
    if (decided == 0 && (close > 0 || quit > 0)) decided = (close > 0 ? close : quit) - 2;
    m_record.LogonTime.clear();
    if (decided != 0) m_record.LogonTime = text(decided - kStampBack, kStampLength);
    m_record.LogonTime += word;
  }

  LogPosition findLogonLine(std::string_view name) {
    if (name == "anonymous") return find(Event::DashAnonymous);
    if (name == kQuit) return find(Event::DashClose);
    if (name != kNoUserFound) return m_search.FindLogonLine(name, m_end.position);
    return findOwnConnectLine();
  }

  /// Searched from 20 bytes before the connect mark, so that a usual connect line finds itself.
  LogPosition findOwnConnectLine() {
    if (m_session.hasDash) return m_session.position - (kSessionNumberLength + 1);
    return m_search.FindForwardLimited(Event::DashConnect, m_end.position, m_session.position - kStampLength);
  }

  /// The line that refused the logon, and the status word it stands for.
  LogPosition findFailure(const char*& word) {
    struct Failure {
      Event event;
      const char* word;
    };
    static constexpr Failure kFailures[] = {
        {Event::DashPasswordIncorrect, kBadPassword},
        {Event::DashIncorrectPassword, kBadPassword},
        {Event::DashUnauthorizedIp, kUnauthorizedIp},
        {Event::DashNoHomeDirectory, kHomeDirNotFound},
        {Event::Dash530, kNotLoggedIn},
    };
    for (const Failure& failure : kFailures) {
      if (const LogPosition hit = find(failure.event); hit > 0) {
        word = failure.word;
        return hit;
      }
    }
    return 0;
  }

  LogPosition find(Event event) { return m_search.FindForwardLimited(event, m_end.position); }

  std::string_view text(LogPosition from, int count) {
    return m_search.window().text(from, static_cast<std::size_t>(count));
  }

  /// Reads the text at from up to the first byte end, at most longest bytes or to the log's end.
  void readUpTo(char end, LogPosition from, LogPosition longest, std::string& text) {
    BlockWindow& window = m_search.window();
    const LogPosition furthest = std::min(from + longest, m_log.length() + 1);
    const LogPosition found = window.find(end, from, std::max(from, furthest));
    text = window.text(from, static_cast<std::size_t>(found - from));
  }

  const LogFile& m_log;
  const FindOptions m_options;
  FindObserver& m_observer;
  LogSearch m_search;
  const ConnectMark& m_session = m_search.session();
  SessionEnd m_end;
  UserAct m_record;
};

}  // namespace

Result<FindEnd> ServuFindUserInfo(const LogFile& log, const FindOptions& options, FindObserver& observer) {
  return Finder(log, options, observer).run();
}

}  // namespace quorvel
