#include "tests/reference/session_scan.h"

#include <string>
#include <utility>

namespace quorvel::test {
namespace {

constexpr std::size_t kLongestText = 32767;

/// The session being looked at: where it starts, its number, and where its end limits the searches.
struct Session {
  std::int64_t position = 0;
  std::string id;
  std::int64_t limit = 0;
};

char nameEndOf(std::string_view log) {
  const std::size_t lf = log.find('\n');
  return lf != std::string_view::npos && lf > 0 && log[lf - 1] != '\r' ? '\n' : '\r';
}

std::string stampBefore(const BlockSearch& log, std::int64_t mark) {
  return log.bytesAt(mark - 21, 20);
}

std::string logoffTime(const BlockSearch& log, Session& session) {
  const auto end = log.FindSessionEnd(session.position, "- " + session.id + " Closing connection");
  session.limit = end.position;
  const std::int64_t stamp = end.position - 21;
  if (!end.isServerStart && stamp <= 0) return "NOT_LOGGED_OUT";
  if (end.isServerStart && stamp >= 0) return "SERVER_RESTART";
  return log.bytesAt(stamp, 20);
}

std::string userName(const BlockSearch& log, const Session& session, char nameEnd, bool trunkLongUsernames) {
  const std::int64_t u = log.FindForwardLimited(session.id + " USER ", session.position, session.limit);
  const std::int64_t q = log.FindForwardLimited(session.id + " QUIT", session.position, session.limit);
  std::string name;
  if (u == 0 && q == 0) name = "NO_USER_FOUND";
  if (q > 0 && (q < u || session.limit < u)) name = "QUIT";
  if (u == 0 && (q > 0 || session.limit >= 1)) name = "QUIT";
  if (!name.empty()) return name;
  name = log.textUpTo(nameEnd, u + 14).substr(0, kLongestText);
  return trunkLongUsernames ? name.substr(0, 12) : name;
}

std::int64_t findLogonLine(const BlockSearch& log, const Session& session, const std::string& name) {
  std::string event = "User " + name + " logged in";
  if (name == "anonymous") event = "anonymous logged in";
  if (name == "QUIT") event = "Closing connection";
  if (name == "NO_USER_FOUND") event = "Connected to ";
  const std::int64_t start = session.position - (name == "NO_USER_FOUND" ? 20 : 0);
  return log.FindForwardLimited("- " + session.id + " " + event, start, session.limit);
}

std::string failedLogonTime(const BlockSearch& log, const Session& session) {
  const auto [position, id, limit] = session;
  const std::int64_t qq = log.FindForwardLimited(id + " QUIT", position, limit);
  const std::int64_t cc = log.FindForwardLimited(id + " Closing connection", position, limit + 100);

  std::string word;
  std::int64_t m = 0;
  constexpr std::pair<const char*, const char*> kReplies[] = {
      {" 530 Not logged in - password incorrect", " BAD_PASSWORD"},
      {" 530 Incorrect password", " BAD_PASSWORD"},
      {" 530 Not logged in - unauthorized IP address", " UNAUTHORIZED_IP"},
      {" 530 Not logged in - cannot find home directory", " HOMEDIR_NOT_FOUND"},
      {" 530", " NotLoggedIn"}};
  for (const auto& [reply, meaning] : kReplies) {
    word = meaning;
    m = log.FindForwardLimited("- " + id + reply, position, limit);
    if (m != 0) break;
  }
  if (m == 0 && cc == 0 && qq == 0) return word;
  if (m == 0) m = (cc > 0 ? cc : qq) - 2;
  return stampBefore(log, m) + word;
}

UserAct recordAt(const BlockSearch& log, std::int64_t position, char nameEnd, bool trunkLongUsernames) {
  Session session{position, log.bytesAt(position - 7, 8), 0};
  UserAct record;
  record.Position = static_cast<std::int32_t>(position);
  record.ConnectTime = log.bytesAt(position - 30, 20);
  record.IP = log.textUpTo(' ', position + 15).substr(0, kLongestText);
  record.NumberInLog = session.id;
  record.LogoffTime = logoffTime(log, session);
  record.Name = userName(log, session, nameEnd, trunkLongUsernames);
  const std::int64_t logon = findLogonLine(log, session, record.Name);
  record.LogonTime = logon > 0 ? stampBefore(log, logon) : failedLogonTime(log, session);
  return record;
}

}  // namespace

std::vector<UserAct> scanSessions(std::string_view text, bool trunkLongUsernames) {
  const BlockSearch log(text);
  const char nameEnd = nameEndOf(text);
  std::vector<UserAct> records;
  std::int64_t position = 1;
  while (position < log.length()) {
    position = log.FindForward(") Connected to ", position);
    if (position == 0) break;
    records.push_back(recordAt(log, position, nameEnd, trunkLongUsernames));
    records.back().LogonNo = static_cast<std::int32_t>(records.size());
    position += 60;
  }
  return records;
}

}  // namespace quorvel::test
