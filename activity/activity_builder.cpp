#include "activity/activity_builder.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "activity/file_rules.h"
#include "activity/logon_rules.h"
#include "activity/sftp_rules.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr ReplyCode kSyntaxError = 500;
constexpr ReplyCode kNotLoggedOn = 530;

/// The line is one of the session's.
void countLine(SessionRow& row, const Event& event, LogNumber log) {
  ++row.lines;
  row.lastPosition = event.position;
  row.lastLog = log;
  if (event.time != kNoTime) row.ended = event.time;
}

bool isAnyOf(const Event& event, std::initializer_list<EventKind> kinds) {
  return std::find(kinds.begin(), kinds.end(), event.kind) != kinds.end();
}

}  // namespace

void ActivityBuilder::beginLog(LogNumber log, const GrammarTraits& traits) {
  for (const RowNumber session : m_tables.sessions.withState())
    m_tables.sessions.letGo(m_tables.sessions.state(session));
  m_tables.log = log;
  m_traits = traits;
  m_servers.clear();
}

ActivityBuilder::Server& ActivityBuilder::serverOf(const Event& event) {
  const std::size_t number = m_traits.isMixed ? event.server : 0;
  if (number >= m_servers.size()) m_servers.resize(number + 1);
  if (m_servers[number] == nullptr)
    m_servers[number] = std::make_unique<Server>(m_traits.isMixed ? grammars()[number]->traits() : m_traits, m_tables);
  return *m_servers[number];
}

bool ActivityBuilder::take(const Event& event) {
  if (event.kind == EventKind::ServerStart) {
    startServer(event);
    return true;
  }
  const bool isKnown = event.kind != EventKind::Unknown;
  if (event.kind == EventKind::Foreign) return true;
  SessionFinder& finder = serverOf(event).finder;
  if (!finder.hasSession(event)) return isKnown;

  const RowNumber session = finder.find(event);
  if (event.kind == EventKind::Connect) return takeConnect(event, session);
  if (session != kNoRow && isStateless(session, event)) {
    countLine(m_tables.sessions.editRow(session), event, m_tables.log);
    return isKnown;
  }
  SessionState& state = session == kNoRow ? begin(event) : m_tables.sessions.state(session);
  countLine(state.row, event, m_tables.log);
  return takeLine(state, event);
}

void ActivityBuilder::addTo(Activity& activity) {
  activity.sessions = m_tables.sessions.snapshot();
  activity.logons = m_tables.logons.snapshot();
  activity.actions = m_tables.actions.snapshot();
  activity.texts = m_tables.texts.snapshot();
}

/// Ends what is open. Each session is looked at once for each server: those before its last start are over.
void ActivityBuilder::startServer(const Event& event) {
  OpenSessions& sessions = m_tables.sessions;
  Server& server = serverOf(event);
  for (RowNumber session = server.firstSinceStart; session < sessions.size(); ++session) {
    if (m_traits.isMixed && sessions.row(session).server != event.server) continue;
    if (sessions.row(session).end == SessionEnd::Open) {
      if (sessions.hasState(session)) endTransfersOf(sessions.state(session), event, FailureCause::ServerStart);
      sessions.editRow(session).end = SessionEnd::ServerStart;
    }
    if (sessions.hasState(session)) sessions.letGo(sessions.state(session));
  }
  server.firstSinceStart = static_cast<RowNumber>(sessions.size());
  server.finder.forget();
}

/// On a number that is open, a connect line is what a client typed, but where the line itself proves that the server
/// wrote it: then it is one more line of the same greeting, or another session.
bool ActivityBuilder::takeConnect(const Event& event, RowNumber session) {
  const bool isOpen = session != kNoRow && m_tables.sessions.row(session).end == SessionEnd::Open;
  const bool isGreeting = isOpen && event.time != kNoTime && m_tables.sessions.row(session).connected == event.time;
  if (isOpen && (event.speaker != Speaker::Server || isGreeting)) {
    countLine(
        m_tables.sessions.hasState(session) ? m_tables.sessions.state(session).row : m_tables.sessions.editRow(session),
        event, m_tables.log);
    return event.speaker == Speaker::Server;
  }
  SessionState& state = begin(event);
  state.row.connected = event.time;
  countLine(state.row, event, m_tables.log);
  return true;
}

/// Lines behind a session's end, and lines that say nothing to one that was let go, are only counted.
bool ActivityBuilder::isStateless(RowNumber session, const Event& event) const {
  if (m_tables.sessions.hasState(session)) return false;
  return isAnyOf(event, {EventKind::Known, EventKind::Unknown}) ||
         (m_tables.sessions.row(session).end != SessionEnd::Open &&
          isAnyOf(event, {EventKind::Close, EventKind::LoggedOut}));
}

bool ActivityBuilder::takeLine(SessionState& session, const Event& event) {
  if (session.row.address == kNoText && !event.address.empty()) session.row.address = m_tables.texts.add(event.address);
  if (session.row.isInferred && session.row.user == kNoText && !event.user.empty())
    session.row.user = m_tables.texts.add(event.user);
  bool fits = true;
  const RowNumber change = std::exchange(session.toldChange, kNoRow);
  if (session.isOpening && event.kind != EventKind::Answer) forgetOpening(session);
  switch (event.kind) {
    case EventKind::Unknown:
      return false;
    case EventKind::Command:
      takeCommand(m_tables, session, event);
      if (event.reply == 0) break;
      takeReply(m_tables, session, event);
      if (event.verb == Verb::Quit) return close(session, event);
      break;
    case EventKind::Reply:
      // The server did not understand a command that was made to look like the session's end.
      if (session.isEndUnsaid && event.reply >= kSyntaxError && event.reply <= kNotLoggedOn)
        session.row.end = SessionEnd::Open;
      takeReply(m_tables, session, event);
      break;
    case EventKind::Request:
      takeRequest(session, event);
      break;
    case EventKind::Answer:
      takeAnswer(m_tables, session, event);
      if (change != kNoRow && event.request == kNextLine) m_tables.takeBack(session, change, event.reply);
      break;
    case EventKind::LoggedOn:
    case EventKind::Refused:
      fits = tellLogonSentence(m_tables, session, event);
      break;
    case EventKind::Transfer:
    case EventKind::FileChange:
      fits = tellFileSentence(m_tables, session, event);
      break;
    case EventKind::Close:
      return close(session, event);
    case EventKind::LoggedOut:
      session.loggedOnAs = kNoText;
      return true;
    case EventKind::Known:
    case EventKind::Foreign:
    case EventKind::ServerStart:
    case EventKind::Connect:
      return true;
  }
  m_tables.sessions.count(session);
  return fits;
}

bool ActivityBuilder::close(SessionState& session, const Event& event) {
  const bool isUnsaid = event.speaker == Speaker::Unsaid;
  const std::string_view user = m_tables.texts[session.row.user];
  if (isUnsaid && !event.user.empty() && !user.empty() && !equalsFolded(user, event.user)) return false;
  if (session.isEnded()) return true;
  session.row.end = SessionEnd::Closed;
  endTransfersOf(session, event, FailureCause::Closed);
  if (isUnsaid) {
    session.isEndUnsaid = true;
  } else {
    m_tables.sessions.letGo(session);
  }
  return true;
}

SessionState& ActivityBuilder::begin(const Event& event) {
  SessionRow row;
  row.position = event.position;
  row.first = event.time;
  Server& server = serverOf(event);
  row.isInferred = server.finder.isInferred(event);
  if (!row.isInferred) row.key = m_tables.texts.add(event.key);
  row.address = m_tables.texts.add(event.address);
  row.log = m_tables.log;
  row.server = event.server;
  row.outcome = server.traits.tellsLogons ? LogonResult::NoLogon : LogonResult::Unknown;
  if (row.isInferred) row.user = m_tables.texts.add(event.user);
  SessionState& state = m_tables.sessions.begin(row);
  server.finder.belongs(event, state.number);
  return state;
}

void ActivityBuilder::endTransfersOf(SessionState& session, const Event& event, FailureCause cause) {
  endTransfers(m_tables, session, event, cause);
  endSftpTransfers(m_tables, session, event, cause);
}

}  // namespace quorvel
