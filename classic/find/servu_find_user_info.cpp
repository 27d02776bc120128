#include "classic/find/servu_find_user_info.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "classic/find/log_search.h"
#include "classic/find/names_in_line.h"
#include "classic/find/record_format.h"
#include "classic/find/user_act.h"

namespace quorvel {
namespace {

constexpr LogPosition kConnectStampBack = 30;  ///< from the ")" back to the line's stamp
constexpr LogPosition kStampBack = 21;         ///< from the "- " in front of a session number back to the stamp
constexpr LogPosition kIpForward = 15;         ///< from the ")" to the address behind " Connected to "
constexpr LogPosition kNameForward = 14;       ///< from a session number to the name behind it and " USER "
constexpr LogPosition kCloseReach = 100;       ///< how much further than the others one search reaches
constexpr LogPosition kNextSession = 60;       ///< from one ")" to where the search for the next connect line starts
constexpr LogPosition kLongestText = 32767;    ///< of a name or address; a record holds far less
constexpr std::size_t kLongestRecord = kRecordOverhead + 2 * kLongestText + 128;  ///< stamps and words are short
constexpr LogPosition kUsualText = 32;  ///< nearly all names and addresses are shorter

/// Makes one record after the other. The steps of a session stand in the order in which they are decided.
class Finder {
 public:
  Finder(const LogFile& log, const FindOptions& options, FindObserver& observer)
      : m_log(log), m_options(options), m_observer(observer), m_search(log, searchOptions(options, observer)) {}

  Result<FindEnd> run() {
    LogPosition position = 1;
    while (position < m_log.length() && m_search.FindForward(position)) {
      const FoundSession found = makeRecord();
      if (!m_search.status().isOk()) return m_search.status().error();
      if (m_search.wasStopped()) return FindEnd::Stopped;
      m_observer.onSession(found);
      position = m_session.position + kNextSession;
      if (!m_observer.keepGoing(m_session.position)) return FindEnd::Stopped;
    }
    if (!m_search.status().isOk()) return m_search.status().error();
    return m_search.wasStopped() ? FindEnd::Stopped : FindEnd::Finished;
  }

 private:
  static LogSearch::Options searchOptions(const FindOptions& options, FindObserver& observer) {
    return {options.blockSize, [&observer](LogPosition readTo) { return observer.keepGoing(readTo); }};
  }

  /// Decides first, then reads: texts cannot be kept while the log is searched.
  FoundSession makeRecord() {
    const LogPosition position = m_session.position;
    m_end = m_search.FindSessionEnd();
    const std::string_view name = findName();
    const Logon logon = findLogon(name);
    ++m_logonNo;

    RecordEncoder record(m_record.data());
    record.lowHalf(position);
    record.text(name);
    record.text(text(position - (kSessionNumberLength - 1), kSessionNumberLength));
    record.text(readUpTo(" ", position + kIpForward, kLongestText));
    record.text(text(position - kConnectStampBack, kStampLength));
    record.text(logon.position != 0 ? stampOf(logon.position) : std::string_view(), logon.word);
    record.text(logoffTime());
    record.number(m_logonNo);
    record.number(0);
    if (m_hasHighHalf) record.highHalf(position);
    return {m_logonNo, position, {m_record.data(), record.end()}};
  }

  std::string_view logoffTime() {
    const LogPosition stamp = m_end.position - kStampBack;
    if (!m_end.isServerStart && stamp <= 0) return kNotLoggedOut;
    if (m_end.isServerStart && stamp >= 0) return kServerRestart;
    return text(stamp, kStampLength);
  }

  /// The name as the record has it, or the word that stands for it.
  std::string_view findName() {
    const LogPosition user = find(Event::User);
    const LogPosition quit = find(Event::Quit);
    if (user == 0 && (quit > 0 || m_end.position >= 1)) return kQuit;
    if (quit > 0 && (quit < user || m_end.position < user)) return kQuit;
    if (user == 0 && quit == 0) return kNoUserFound;
    const LogPosition longest = m_options.trunkLongUsernames ? LogPosition{kLongestSearchedName + 1} : kLongestText;
    m_name = readUpTo("\r\n", user + kNameForward, longest);
    return m_options.trunkLongUsernames ? trunkedName(m_name) : std::string_view(m_name);
  }

  struct Logon {
    LogPosition position = 0;    ///< of the line that decided it; 0: none did
    std::string_view word = {};  ///< what is said behind its time
  };

  Logon findLogon(std::string_view name) {
    if (const LogPosition logon = findLogonLine(name); logon > 0) return {logon};
    Logon failed = findFailure();
    const LogPosition close = m_search.FindForwardLimited(Event::Close, m_end.position + kCloseReach);
    const LogPosition quit = find(Event::Quit);
    if (failed.position == 0 && (close > 0 || quit > 0)) failed.position = (close > 0 ? close : quit) - 2;
    return failed;
  }

  LogPosition findLogonLine(std::string_view name) {
    if (name == "anonymous") return find(Event::DashAnonymous);
    if (name == kQuit) return find(Event::DashClose);
    if (name != kNoUserFound) return m_search.FindLogonLine(m_name.size(), m_end.position);
    return findOwnConnectLine();
  }

  /// Searched from 20 bytes before the connect mark, so that a usual connect line finds itself.
  LogPosition findOwnConnectLine() {
    if (m_session.hasDash) return m_session.position - (kSessionNumberLength + 1);
    return m_search.FindForwardLimited(Event::DashConnect, m_end.position, m_session.position - kStampLength);
  }

  /// The line that refused the logon.
  Logon findFailure() {
    struct Failure {
      Event event;
      std::string_view word;
    };
    static constexpr Failure kFailures[] = {
        {Event::DashPasswordIncorrect, kBadPassword},
        {Event::DashIncorrectPassword, kBadPassword},
        {Event::DashUnauthorizedIp, kUnauthorizedIp},
        {Event::DashNoHomeDirectory, kHomeDirNotFound},
        {Event::Dash530, kNotLoggedIn},
    };
    for (const Failure& failure : kFailures) {
      if (const LogPosition hit = find(failure.event); hit > 0) return {hit, failure.word};
    }
    return {0, kNotLoggedIn};
  }

  LogPosition find(Event event) { return m_search.FindForwardLimited(event, m_end.position); }

  std::string_view text(LogPosition from, int count) {
    return m_search.window().text(from, static_cast<std::size_t>(count));
  }
  std::string_view stampOf(LogPosition dash) { return text(dash - kStampBack, kStampLength); }

  /// The text at from up to the first of the bytes that end it, at most longest bytes or to the log's end.
  std::string_view readUpTo(std::string_view ends, LogPosition from, LogPosition longest) {
    const LogPosition most = std::max<LogPosition>(0, std::min(longest, m_log.length() + 1 - from));
    for (LogPosition count = kUsualText;; count *= 4) {
      const std::string_view read = text(from, static_cast<int>(std::min(count, most)));
      std::string_view found = read;
      for (const char end : ends)
        found = found.substr(0, found.find(end));
      if (found.size() < read.size() || count >= most) return found;
    }
  }

  const LogFile& m_log;
  const FindOptions m_options;
  const bool m_hasHighHalf = slotSizeFor(m_log.length()) != kRecordSize;
  FindObserver& m_observer;
  LogSearch m_search;
  const ConnectMark& m_session = m_search.session();
  SessionEnd m_end;
  std::string m_name;  ///< as the log has it
  std::string m_record = std::string(kLongestRecord, ' ');
  std::int32_t m_logonNo = 0;
};

}  // namespace

Result<FindEnd> ServuFindUserInfo(const LogFile& log, const FindOptions& options, FindObserver& observer) {
  return Finder(log, options, observer).run();
}

}  // namespace quorvel
