#include "activity/sftp_rules.h"

#include <utility>

namespace quorvel {
namespace {

constexpr ReplyCode kOk = kSftpStatus;
constexpr ReplyCode kEndOfFile = kSftpStatus + 1;

std::string kept(std::string_view text) {
  return std::string(text.substr(0, kLongestText + 1));
}

/// Outcome, cause and reply by the status of an answer.
ToldAction toldBy(const Event& answer, FileAction action, LogTime started) {
  ToldAction told;
  told.action = action;
  told.outcome = answer.reply == kOk ? Outcome::Ok : Outcome::Failed;
  told.cause = answer.reply == kOk ? FailureCause::None : FailureCause::Reply;
  told.reply = answer.reply;
  told.started = started;
  return told;
}

void tell(TablesInWork& tables, SessionState& session, const Event& answer, FileAction action,
          const SftpRequest& request) {
  if (answer.reply == 0) return;  // no status
  ToldAction told = toldBy(answer, action, request.time);
  told.path = request.path;
  told.toPath = request.toPath;
  (void)tables.tellAction(session, answer, told);
}

void answerOpen(TablesInWork& tables, SessionState& session, const Event& answer, SftpRequest request) {
  if (!answer.text.empty()) {
    session.sftp->addFile({.handle = kept(answer.text),
                           .path = std::move(request.path),
                           .action = request.action,
                           .isForWriting = request.action == FileAction::Upload,
                           .time = request.time});
  } else if (answer.reply != kOk) {
    tell(tables, session, answer, request.action, request);
  }
}

/// A file that was told by the server's sentence gets the status; any other is told now. A sentence may still follow.
void tellFile(TablesInWork& tables, SessionState& session, const Event& answer, const SftpFile& file) {
  if (file.row != kNotTold) {
    ActionRow& row = tables.actions.edit(file.row);
    if (row.reply == 0) row.reply = answer.reply;
    return;
  }
  ToldAction told = toldBy(answer, file.action, file.time);
  told.path = file.path;
  session.transfer = WaitingCommand();
  session.transfer.verb = file.action == FileAction::Upload ? Verb::Store : Verb::Retrieve;
  session.transfer.row = tables.tellAction(session, answer, told);
}

void answerClose(TablesInWork& tables, SessionState& session, const Event& answer, const SftpRequest& request) {
  const auto file = session.sftp->takeFile(request.handle);
  if (!file || answer.reply == 0) return;
  // A file that was only opened and closed went nowhere, but for an empty one that was written.
  if (file->isMoved || file->isForWriting || file->row != kNotTold) tellFile(tables, session, answer, *file);
}

void answerMove(TablesInWork& tables, SessionState& session, const Event& answer, const SftpRequest& request) {
  if (answer.reply == 0 || answer.reply == kOk || answer.reply == kEndOfFile) return;
  SftpFile* const file = session.sftp->file(request.handle);
  if (file == nullptr || file->row != kNotTold) return;
  ToldAction told = toldBy(answer, file->action, file->time);
  told.path = file->path;
  file->row = tables.tellAction(session, answer, told);
}

}  // namespace

void takeRequest(SessionState& session, const Event& request) {
  if (request.verb == Verb::Other) return;
  if (!session.sftp) session.sftp = std::make_unique<SftpState>();
  session.isOpening = request.request == kNextLine;
  const bool isMove = request.verb == Verb::SftpRead || request.verb == Verb::SftpWrite;
  if (SftpFile* const file = isMove ? session.sftp->file(request.text) : nullptr; file && !file->isMoved) {
    file->isMoved = true;
    file->action = request.verb == Verb::SftpRead ? FileAction::Download : FileAction::Upload;
  }
  session.sftp->addRequest({.number = request.request,
                            .verb = request.verb,
                            .action = request.action,
                            .time = request.time,
                            .path = kept(request.path),
                            .toPath = kept(request.toPath),
                            .handle = kept(request.text)});
}

void forgetOpening(SessionState& session) {
  session.isOpening = false;
  (void)session.sftp->takeRequest(kNextLine);
}

void takeAnswer(TablesInWork& tables, SessionState& session, const Event& answer) {
  session.hasReplies = true;
  auto request = session.sftp ? session.sftp->takeRequest(answer.request) : std::nullopt;
  if (!request) return;
  switch (request->verb) {
    case Verb::SftpOpen:
      answerOpen(tables, session, answer, std::move(*request));
      break;
    case Verb::SftpClose:
      answerClose(tables, session, answer, *request);
      break;
    case Verb::SftpRead:
    case Verb::SftpWrite:
      answerMove(tables, session, answer, *request);
      break;
    case Verb::SftpRemove:
      tell(tables, session, answer, FileAction::Delete, *request);
      break;
    case Verb::SftpRename:
      tell(tables, session, answer, FileAction::Rename, *request);
      break;
    case Verb::SftpMakeFolder:
      tell(tables, session, answer, FileAction::MakeFolder, *request);
      break;
    case Verb::SftpRemoveFolder:
      tell(tables, session, answer, FileAction::RemoveFolder, *request);
      break;
    default:
      break;
  }
}

void endSftpTransfers(TablesInWork& tables, SessionState& session, const Event& end, FailureCause cause) {
  if (!session.sftp) return;
  for (const SftpFile& file : session.sftp->takeFiles()) {
    if (!file.isMoved || file.row != kNotTold) continue;
    ToldAction told;
    told.action = file.action;
    told.outcome = Outcome::Failed;
    told.cause = cause;
    told.started = file.time;
    told.path = file.path;
    (void)tables.tellAction(session, end, told);
  }
}

}  // namespace quorvel
