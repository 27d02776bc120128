// What is remembered of a session while its lines are read: the command that waits for its reply, the transfer that
// runs, the folder, who is logged on. Bounded, whatever the session's client sends.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "activity/activity.h"
#include "activity/sftp_state.h"
#include "activity/texts.h"
#include "grammar/event.h"

namespace quorvel {

inline constexpr RowNumber kNoRow = 0xFFFFFFFF;

/// A command that waits for its reply, or, until the next one, what was told about it: by the server's sentence, by its
/// reply, or by both. Whichever comes first makes the row, the other adds to it.
struct WaitingCommand {
  Verb verb = Verb::Other;
  bool isWaiting = false;  ///< for its final reply
  bool hasSentence = false;
  bool isAborting = false;  ///< a transfer: the client sent ABOR
  LogTime time = kNoTime;
  RowNumber row = kNoRow;  ///< that tells of it: an action, or a log-on
  std::uint64_t position = 0;
  std::string argument;  ///< never that of PASS
};

struct SessionState {
  SessionRow row;  ///< newer than the one in the table
  RowNumber number = kNoRow;
  std::uint32_t index = 0;      ///< of this state in its pool
  TextId givenUser = kNoText;   ///< by the last USER
  TextId loggedOnAs = kNoText;  ///< kNoText: nobody is logged on
  bool isRecent = false;        ///< looked at since the last round for the least recently used
  bool isEndUnsaid = false;     ///< ended by a line that nothing proves to be the server's
  bool hasReplies = false;
  WaitingCommand command;   ///< the last one that is no transfer
  WaitingCommand transfer;  ///< the last transfer
  std::string renameFrom;   ///< empty: none
  std::string folder;       ///< empty: not known
  std::unique_ptr<SftpState> sftp;
  RowNumber toldChange = kNoRow;  ///< by the line before: an answer that follows at once takes it back
  bool isOpening = false;         ///< the line before asked to open a file
  std::size_t counted = 0;        ///< bytes of the texts above, as they were counted last

  [[nodiscard]] bool isEnded() const { return row.end != SessionEnd::Open; }
  [[nodiscard]] std::size_t textBytes() const {
    return command.argument.capacity() + transfer.argument.capacity() + renameFrom.capacity() + folder.capacity() +
           (sftp ? sftp->bytes() : 0);
  }
};

}  // namespace quorvel
