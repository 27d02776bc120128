#include "activity/tables_in_work.h"

#include <algorithm>

namespace quorvel {
namespace {

/// -1 stays where no file's size is known.
void addBytes(std::int64_t& sum, bool isFirst, std::int64_t bytes) {
  if (bytes >= 0) {
    sum = std::max<std::int64_t>(sum, 0);
    sum = bytes > INT64_MAX - sum ? INT64_MAX : sum + bytes;
  } else if (isFirst) {
    sum = -1;
  }
}

void countAction(SessionRow& session, const ToldAction& told) {
  const bool isTransfer = told.action <= FileAction::Upload;
  if (isTransfer && told.outcome == Outcome::Failed) ++session.failedTransfers;
  if (told.outcome != Outcome::Ok) return;
  switch (told.action) {
    case FileAction::Download:
      addBytes(session.downloadBytes, session.downloads++ == 0, told.bytes);
      break;
    case FileAction::Upload:
      addBytes(session.uploadBytes, session.uploads++ == 0, told.bytes);
      break;
    case FileAction::Delete:
      ++session.deletes;
      break;
    case FileAction::Rename:
      ++session.renames;
      break;
    case FileAction::MakeFolder:
    case FileAction::RemoveFolder:
      break;
  }
}

std::int32_t secondsOf(const Event& line, LogTime started) {
  std::int64_t seconds = line.seconds;
  if (seconds < 0 && started != kNoTime && line.time >= started) seconds = line.time - started;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(seconds, -1, INT32_MAX));
}

}  // namespace

RowNumber TablesInWork::tellAction(SessionState& session, const Event& line, const ToldAction& told) {
  ActionRow row;
  row.position = line.position;
  row.bytes = told.bytes;
  row.time = line.time;
  row.seconds = secondsOf(line, told.started);
  row.session = session.number;
  const bool tellsUser = line.kind == EventKind::Transfer || line.kind == EventKind::FileChange ||
                         (line.kind == EventKind::Command && line.reply != 0);
  row.user = tellsUser && !line.user.empty() ? texts.add(line.user) : session.loggedOnAs;
  // What another process of the session still tells behind its end.
  const bool isLogonKnown = session.row.isInferred && session.row.outcome == LogonResult::LoggedOn;
  if (row.user == kNoText && isLogonKnown) row.user = session.row.user;
  row.address = session.row.address;
  row.path = texts.add(told.path);
  row.toPath = texts.add(told.toPath);
  row.folder = texts.add(session.folder);
  row.reply = told.reply;
  row.log = log;
  row.action = told.action;
  row.outcome = told.outcome;
  row.cause = told.cause;
  countAction(session.row, told);
  actions.append(row);
  return static_cast<RowNumber>(actions.size() - 1);
}

void TablesInWork::tellSize(SessionState& session, RowNumber action, std::int64_t bytes) {
  ActionRow& row = actions.edit(action);
  if (row.bytes >= 0 || bytes < 0) return;
  row.bytes = bytes;
  if (row.outcome != Outcome::Ok) return;
  addBytes(row.action == FileAction::Download ? session.row.downloadBytes : session.row.uploadBytes, false, bytes);
}

void TablesInWork::takeBack(SessionState& session, RowNumber action, ReplyCode reply) {
  ActionRow& row = actions.edit(action);
  if (row.action == FileAction::Delete) --session.row.deletes;
  if (row.action == FileAction::Rename) --session.row.renames;
  row.outcome = Outcome::Failed;
  row.cause = FailureCause::Reply;
  row.reply = reply;
}

RowNumber TablesInWork::tellLogon(SessionState& session, const Event& line, LogonResult result, TextId user,
                                  ReplyCode reply) {
  LogonRow row;
  row.position = line.position;
  row.time = line.time;
  row.session = session.number;
  row.user = user;
  row.address = session.row.address;
  row.reply = reply;
  row.log = log;
  row.result = result;
  logons.append(row);
  if (row.isOk()) {
    session.row.outcome = LogonResult::LoggedOn;
    session.row.loggedOn = line.time;
    session.row.user = user;
    session.loggedOnAs = user;
    session.folder.clear();
  } else {
    ++session.row.failedLogons;
    if (session.row.outcome != LogonResult::LoggedOn) {
      session.row.outcome = result;
      session.row.user = user;
    }
  }
  return static_cast<RowNumber>(logons.size() - 1);
}

}  // namespace quorvel
