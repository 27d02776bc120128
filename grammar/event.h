// What one line of a log says. Every grammar turns its lines into these; what they mean together is put together in
// activity/.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quorvel {

/// Seconds since 1970 on the log's own clock, without a zone. Dates before 1970 or after 2106 are not known.
using LogTime = std::uint32_t;
inline constexpr LogTime kNoTime = 0;

enum class EventKind : std::uint8_t {
  Unknown,      ///< the front of the line or its text is not known; with a key it still belongs to that session.
                ///< text: what stands behind the front, where that is known
  Known,        ///< nothing to remember, but the line belongs to its session
  Foreign,      ///< a line of another program in a shared log
  ServerStart,  ///< all sessions still open end here
  Connect,      ///< address
  Command,      ///< verb, text: its argument; where the line holds its reply too: reply, path, bytes, seconds
  Reply,        ///< reply, text: what stands after the digits
  Request,      ///< SFTP: verb, request, path, toPath, text: the handle
  Answer,       ///< SFTP: request, reply, text: the handle that was given
  LoggedOn,     ///< user; address where the line tells it
  Refused,      ///< user, refusal; address where the line tells it
  Transfer,     ///< a file went over or did not: action, outcome, path, bytes, seconds; user and address where told
  FileChange,   ///< a file or folder was changed: action, outcome, path, toPath; user and address where told
  Close,        ///< the session ended
  LoggedOut,    ///< the user left; the session may go on
};

/// The commands that mean something to a session; all others are Other. SFTP requests follow those of FTP.
enum class Verb : std::uint8_t {
  Other,
  User,
  Pass,
  Reinitialise,
  Quit,
  Retrieve,
  Store,
  Append,
  StoreUnique,
  Abort,
  Delete,
  RenameFrom,
  RenameTo,
  MakeFolder,
  RemoveFolder,
  ChangeFolder,
  ChangeUp,
  PrintFolder,
  SftpOpen,
  SftpClose,
  SftpRead,
  SftpWrite,
  SftpRemove,
  SftpRename,
  SftpMakeFolder,
  SftpRemoveFolder,
};

/// What is done with files; the order and the names (actionName) stand in tables, do not change.
enum class FileAction : std::uint8_t {
  Download,
  Upload,
  Delete,
  Rename,
  MakeFolder,
  RemoveFolder
};

enum class Outcome : std::uint8_t {
  Unknown,
  Ok,
  Failed
};

/// How a log-on ended; reasonName() gives the words of the tables.
enum class LogonResult : std::uint8_t {
  Unknown,  ///< the format has no log-ons
  NoLogon,  ///< no attempt that was answered
  LoggedOn,
  BadPassword,
  RefusedAddress,
  NoHome,
  Refused,
};

/// A reply: 0 none, 100 to 999 the three digits of FTP, kSftpStatus + n the SFTP status n.
using ReplyCode = std::uint16_t;
inline constexpr ReplyCode kSftpStatus = 1000;

/// How far a line may be believed: whose words its text is, as the line's front tells it.
enum class Speaker : std::uint8_t {
  Unsaid,  ///< the front does not tell: a sentence of the server counts only where it fits
  Server,  ///< the server's own words
  Client,  ///< what a client sent; never a sentence of the server
};

/// Event::request where a log does not number requests: an answer is written only for one that failed, in the next
/// line.
inline constexpr std::uint32_t kNextLine = 0xFFFFFFFF;

/// One line. Texts are views into the line and hold only while it is handed over; bytes as they stand in the log.
struct Event {
  EventKind kind = EventKind::Unknown;
  Verb verb = Verb::Other;
  FileAction action = FileAction::Download;
  Outcome outcome = Outcome::Unknown;
  LogonResult refusal = LogonResult::Refused;
  Speaker speaker = Speaker::Unsaid;
  std::uint8_t server = 0;  ///< index of the grammar in grammars(), for logs that hold lines of several
  bool isAborted = false;   ///< a Transfer that was broken off
  ReplyCode reply = 0;
  LogTime time = kNoTime;
  std::uint32_t request = 0;   ///< number of an SFTP request
  std::uint32_t length = 0;    ///< of the line with its line end, 0 only before it was set
  std::uint64_t position = 0;  ///< of the line's first byte, from 1
  std::int64_t bytes = -1;     ///< -1: not told
  std::int64_t seconds = -1;   ///< -1: not told
  std::string_view key;        ///< the log's own session: number, process, GUID; empty: none
  std::string_view text;
  std::string_view path;
  std::string_view toPath;
  std::string_view user;
  std::string_view address;
};

/// "download", ..., as in the tables.
[[nodiscard]] std::string_view actionName(FileAction action);
/// "logged_on", "bad_password", ...; empty for Unknown.
[[nodiscard]] std::string_view logonResultName(LogonResult result);
/// "226", "SSH_FX_FAILURE"; empty for 0.
[[nodiscard]] std::string replyName(ReplyCode reply);
/// The reply that stands for the SFTP status of that name; a plain failure for an SSH_FX_ name that is not known, 0 for
/// any other text.
[[nodiscard]] ReplyCode sftpReply(std::string_view statusName);

}  // namespace quorvel
