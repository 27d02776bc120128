#include "activity/logon_rules.h"

#include "log/text.h"

namespace quorvel {
namespace {

constexpr ReplyCode kLoggedOn = 230;
constexpr ReplyCode kNotLoggedOn = 530;

/// Why, by the texts that are known; administrators may have others.
LogonResult refusalIn(std::string_view text) {
  if (containsFolded(text, "password incorrect") || startsWithFolded(text, "Incorrect password"))
    return LogonResult::BadPassword;
  if (containsFolded(text, "unauthorized IP")) return LogonResult::RefusedAddress;
  if (containsFolded(text, "cannot find home directory")) return LogonResult::NoHome;
  return LogonResult::Refused;
}

bool isLogonCommand(const WaitingCommand& command) {
  return command.verb == Verb::User || command.verb == Verb::Pass;
}

/// The name as the client gave it, where a sentence means that one.
TextId nameOf(TablesInWork& tables, const SessionState& session, std::string_view told) {
  const std::string_view given = tables.texts[session.givenUser];
  if (told.empty() || equalsFolded(given, told.substr(0, kLongestText))) return session.givenUser;
  return tables.texts.add(told);
}

/// A sentence behind the reply that made the row: the sentence is what decided it.
void moveToSentence(TablesInWork& tables, SessionState& session, const Event& sentence) {
  LogonRow& row = tables.logons.edit(session.command.row);
  row.time = sentence.time;
  row.position = sentence.position;
  if (row.isOk()) session.row.loggedOn = sentence.time;
}

}  // namespace

void giveUser(TablesInWork& tables, SessionState& session, const Event& command) {
  session.givenUser = tables.texts.add(trimBlanks(command.text));
  if (session.row.outcome != LogonResult::LoggedOn) session.row.user = session.givenUser;
}

void replyToLogon(TablesInWork& tables, SessionState& session, const Event& reply) {
  const bool isOk = reply.reply == kLoggedOn;
  if (!isOk && reply.reply != kNotLoggedOn) return;
  WaitingCommand& command = session.command;
  if (command.row != kNoRow) {
    LogonRow& row = tables.logons.edit(command.row);
    if (row.isOk() == isOk) row.reply = reply.reply;
    return;
  }
  if (session.givenUser == kNoText) session.givenUser = tables.texts.add(reply.user);
  command.row = tables.tellLogon(session, reply, isOk ? LogonResult::LoggedOn : refusalIn(reply.text),
                                 session.givenUser, reply.reply);
}

bool tellLogonSentence(TablesInWork& tables, SessionState& session, const Event& sentence) {
  WaitingCommand& command = session.command;
  const bool isAttempt = isLogonCommand(command);
  if (sentence.speaker == Speaker::Unsaid) {
    const bool isName = equalsFolded(tables.texts[session.givenUser], sentence.user);
    if (!isAttempt || !command.isWaiting || command.row != kNoRow || !isName) return false;
  }
  // Another part of the server that goes on with who is logged on.
  const TextId loggedOnAs = session.loggedOnAs;
  if (!isAttempt && sentence.kind == EventKind::LoggedOn && loggedOnAs != kNoText &&
      tables.texts[loggedOnAs] == sentence.user)
    return true;
  const LogonResult result = sentence.kind == EventKind::LoggedOn ? LogonResult::LoggedOn : sentence.refusal;
  const bool isOk = result == LogonResult::LoggedOn;
  const bool isToldByReply = isAttempt && command.row != kNoRow && !command.hasSentence;
  if (isToldByReply && tables.logons[command.row].isOk() == isOk) {
    moveToSentence(tables, session, sentence);
    command.hasSentence = true;
    return true;
  }
  const RowNumber row = tables.tellLogon(session, sentence, result, nameOf(tables, session, sentence.user), 0);
  if (isAttempt && command.isWaiting) {
    command.row = row;
    command.hasSentence = true;
  }
  return true;
}

}  // namespace quorvel
