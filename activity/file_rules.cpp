#include "activity/file_rules.h"

#include <optional>

#include "activity/folder_path.h"
#include "activity/logon_rules.h"

namespace quorvel {
namespace {

constexpr ReplyCode kTransferComplete = 226;
constexpr ReplyCode kFileActionDone = 250;
constexpr ReplyCode kPathname = 257;
constexpr ReplyCode kNoDataConnection = 425;
constexpr ReplyCode kTransferAborted = 426;

bool isPreliminary(ReplyCode reply) {
  return reply < 200;
}
bool isDone(ReplyCode reply) {
  return reply >= 200 && reply < 300;
}
bool isFailure(ReplyCode reply) {
  return reply >= 400 && reply < 600;
}

/// What a command does with a file; empty for all others.
std::optional<FileAction> actionOf(Verb verb) {
  switch (verb) {
    case Verb::Retrieve:
      return FileAction::Download;
    case Verb::Store:
    case Verb::Append:
    case Verb::StoreUnique:
      return FileAction::Upload;
    case Verb::Delete:
      return FileAction::Delete;
    case Verb::RenameFrom:
    case Verb::RenameTo:
      return FileAction::Rename;
    case Verb::MakeFolder:
      return FileAction::MakeFolder;
    case Verb::RemoveFolder:
      return FileAction::RemoveFolder;
    default:
      return std::nullopt;
  }
}

bool isTransfer(Verb verb) {
  const auto action = actionOf(verb);
  return action && *action <= FileAction::Upload;
}

void begin(WaitingCommand& waiting, const Event& command) {
  waiting = WaitingCommand();
  waiting.verb = command.verb;
  waiting.isWaiting = true;
  waiting.time = command.time;
  waiting.position = command.position;
  if (command.verb != Verb::Pass) waiting.argument = command.text.substr(0, kLongestText + 1);
}

/// Whether a reply ends the transfer though a later command waits for one as well.
bool isOfTransfer(ReplyCode reply) {
  return reply == kTransferComplete || reply == kNoDataConnection || reply == kTransferAborted;
}

/// The row for what the session's command did.
RowNumber tellCommand(TablesInWork& tables, SessionState& session, const WaitingCommand& command, const Event& line,
                      ToldAction told) {
  told.action = *actionOf(command.verb);
  if (line.position != command.position) told.started = command.time;
  if (command.verb == Verb::RenameTo) {
    if (told.path.empty()) told.path = session.renameFrom;
    if (told.toPath.empty()) told.toPath = command.argument;
  } else if (told.path.empty()) {
    told.path = command.argument;
  }
  return tables.tellAction(session, line, told);
}

/// A transfer that another one took the place of before any reply came: nothing tells how it ended.
void giveUpTransfer(TablesInWork& tables, SessionState& session) {
  WaitingCommand& transfer = session.transfer;
  if (!transfer.isWaiting || transfer.row != kNoRow) return;
  Event line;
  line.time = transfer.time;
  line.position = transfer.position;
  (void)tellCommand(tables, session, transfer, line, {});
}

void replyToTransfer(TablesInWork& tables, SessionState& session, const Event& reply) {
  WaitingCommand& transfer = session.transfer;
  const bool isFinished = reply.reply == kTransferComplete || reply.reply == kFileActionDone;
  if (!isFinished && !isFailure(reply.reply)) return;
  transfer.isWaiting = false;
  if (transfer.row != kNoRow) {
    ActionRow& row = tables.actions.edit(transfer.row);
    row.reply = reply.reply;
    if (row.outcome == Outcome::Failed && row.cause == FailureCause::None && !isFinished)
      row.cause = FailureCause::Reply;
    return;
  }
  ToldAction told;
  told.outcome = isFinished ? Outcome::Ok : Outcome::Failed;
  if (!isFinished) told.cause = transfer.isAborting ? FailureCause::Aborted : FailureCause::Reply;
  told.reply = reply.reply;
  told.bytes = reply.bytes;
  told.path = reply.path;
  transfer.row = tellCommand(tables, session, transfer, reply, told);
}

void replyToFileCommand(TablesInWork& tables, SessionState& session, const Event& reply) {
  WaitingCommand& command = session.command;
  if (command.row != kNoRow) {
    tables.actions.edit(command.row).reply = reply.reply;
  } else if (isDone(reply.reply) || isFailure(reply.reply)) {
    ToldAction told;
    told.outcome = isDone(reply.reply) ? Outcome::Ok : Outcome::Failed;
    told.cause = isDone(reply.reply) ? FailureCause::None : FailureCause::Reply;
    told.reply = reply.reply;
    (command.verb == Verb::RenameTo ? told.toPath : told.path) = reply.path;
    command.row = tellCommand(tables, session, command, reply, told);
  }
}

void replyToCommand(TablesInWork& tables, SessionState& session, const Event& reply) {
  WaitingCommand& command = session.command;
  command.isWaiting = false;
  switch (command.verb) {
    case Verb::User:
    case Verb::Pass:
      replyToLogon(tables, session, reply);
      break;
    case Verb::Reinitialise:
      if (isDone(reply.reply)) session.loggedOnAs = kNoText;
      break;
    case Verb::RenameFrom:
      // Not done yet: the new name comes next.
      if (isFailure(reply.reply)) {
        replyToFileCommand(tables, session, reply);
      } else {
        session.renameFrom = command.argument;
      }
      break;
    case Verb::RenameTo:
      replyToFileCommand(tables, session, reply);
      session.renameFrom.clear();
      break;
    case Verb::Delete:
    case Verb::MakeFolder:
    case Verb::RemoveFolder:
      replyToFileCommand(tables, session, reply);
      break;
    case Verb::ChangeFolder:
      if (isDone(reply.reply)) session.folder = folderAfter(session.folder, command.argument);
      break;
    case Verb::ChangeUp:
      if (isDone(reply.reply)) session.folder = folderAfter(session.folder, "..");
      break;
    case Verb::PrintFolder:
      if (reply.reply == kPathname) session.folder = folderInReply(reply.text);
      break;
    default:
      break;
  }
}

/// The command that a sentence is about: one whose reply is waited for, or that its reply told of just now.
WaitingCommand* commandOf(SessionState& session, FileAction action) {
  WaitingCommand& waiting = action <= FileAction::Upload ? session.transfer : session.command;
  const bool isSame = actionOf(waiting.verb) == action && !waiting.hasSentence;
  return isSame && (waiting.isWaiting || waiting.row != kNoRow) ? &waiting : nullptr;
}

/// What the sentence adds to what the reply told.
void addSentence(TablesInWork& tables, SessionState& session, RowNumber action, const Event& sentence) {
  tables.tellSize(session, action, sentence.bytes);
  const TextId path = tables.texts.add(sentence.path);
  ActionRow& row = tables.actions.edit(action);
  if (path != kNoText) row.path = path;
  if (row.seconds < 0 && sentence.seconds >= 0 && sentence.seconds <= INT32_MAX)
    row.seconds = static_cast<std::int32_t>(sentence.seconds);
}

}  // namespace

void takeCommand(TablesInWork& tables, SessionState& session, const Event& command) {
  if (isTransfer(command.verb)) {
    giveUpTransfer(tables, session);
    session.command = WaitingCommand();
    begin(session.transfer, command);
    return;
  }
  if (command.verb == Verb::Abort && session.transfer.isWaiting) session.transfer.isAborting = true;
  begin(session.command, command);
  if (command.verb == Verb::User) giveUser(tables, session, command);
}

void takeReply(TablesInWork& tables, SessionState& session, const Event& reply) {
  session.hasReplies = true;
  if (isPreliminary(reply.reply)) return;
  const bool isToTransfer = session.transfer.isWaiting && (!session.command.isWaiting || isOfTransfer(reply.reply));
  if (isToTransfer) {
    replyToTransfer(tables, session, reply);
  } else if (session.command.isWaiting) {
    replyToCommand(tables, session, reply);
  }
}

bool tellFileSentence(TablesInWork& tables, SessionState& session, const Event& sentence) {
  WaitingCommand* const command = commandOf(session, sentence.action);
  if (sentence.speaker == Speaker::Unsaid && (command == nullptr || !command->isWaiting)) return false;
  if (command != nullptr) command->hasSentence = true;
  if (command != nullptr && command->row != kNoRow) {
    addSentence(tables, session, command->row, sentence);
    return true;
  }
  ToldAction told;
  told.action = sentence.action;
  told.outcome = sentence.outcome;
  if (sentence.isAborted) told.cause = FailureCause::Aborted;
  told.bytes = sentence.bytes;
  told.path = sentence.path;
  told.toPath = sentence.toPath;
  SftpFile* const file = command == nullptr && session.sftp ? session.sftp->untoldFile(sentence.action) : nullptr;
  if (file != nullptr) {
    told.started = file->time;
    file->row = tables.tellAction(session, sentence, told);
  } else if (command != nullptr) {
    command->row = tellCommand(tables, session, *command, sentence, told);
  } else {
    const RowNumber row = tables.tellAction(session, sentence, told);
    if (sentence.kind == EventKind::FileChange && sentence.outcome == Outcome::Ok) session.toldChange = row;
  }
  return true;
}

void endTransfers(TablesInWork& tables, SessionState& session, const Event& end, FailureCause cause) {
  WaitingCommand& transfer = session.transfer;
  if (transfer.isWaiting && transfer.row == kNoRow) {
    ToldAction told;
    if (session.hasReplies) {
      told.outcome = Outcome::Failed;
      told.cause = cause;
    }
    (void)tellCommand(tables, session, transfer, end, told);
  }
  transfer = WaitingCommand();
  session.command = WaitingCommand();
}

}  // namespace quorvel
