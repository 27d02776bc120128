// OpenSSH: sshd's log-ons, and the file transfers of internal-sftp and sftp-server with LogLevel INFO or VERBOSE. They
// have no log of their own; their lines stand in a syslog or a journal.
#include "grammar/openssh.h"

#include <array>

#include "grammar/all_grammars.h"
#include "grammar/line_front.h"

namespace quorvel {
namespace {

/// What behind `sent status ` stands for the SFTP status of that number.
constexpr auto kStatusTexts =
    std::to_array<std::string_view>({"Success", "End of file", "No such file", "Permission denied", "Failure",
                                     "Bad message", "No connection", "Connection lost", "Operation unsupported"});

/// Beginnings of sftp-server's lines that change nothing.
constexpr auto kSftpRemarks = std::to_array<std::string_view>({"received client version ",
                                                               "realpath ",
                                                               "stat name ",
                                                               "lstat name ",
                                                               "fstat ",
                                                               "opendir ",
                                                               "closedir ",
                                                               "readdir ",
                                                               "set ",
                                                               "sent ",
                                                               "statvfs ",
                                                               "fstatvfs ",
                                                               "readlink ",
                                                               "limits",
                                                               "symlink ",
                                                               "hardlink ",
                                                               "debug",
                                                               "copy-data ",
                                                               "fsync ",
                                                               "users-groups"});

/// Beginnings of sshd's lines that tell neither of a log-on nor of an end.
constexpr auto kSshdRemarks = std::to_array<std::string_view>({"Received disconnect from ",
                                                               "Postponed ",
                                                               "Starting session: ",
                                                               "Close session: ",
                                                               "User child is on pid ",
                                                               "Transferred: ",
                                                               "subsystem request",
                                                               "Invalid user ",
                                                               "input_userauth_request: ",
                                                               "error: ",
                                                               "fatal: ",
                                                               "debug",
                                                               "Connection from ",
                                                               "Connection reset",
                                                               "Unable to negotiate",
                                                               "Did not receive identification",
                                                               "Bad protocol version",
                                                               "banner exchange: ",
                                                               "kex_",
                                                               "ssh_dispatch_run_fatal",
                                                               "Timeout, client not",
                                                               "Disconnecting ",
                                                               "Accepted key ",
                                                               "Found matching ",
                                                               "maximum authentication",
                                                               "Authentication ref",
                                                               "userauth_",
                                                               "Server listening on ",
                                                               "Received signal ",
                                                               "Received SIGHUP"});

template <std::size_t N>
bool startsWithAny(std::string_view text, const std::array<std::string_view, N>& beginnings) {
  for (const std::string_view beginning : beginnings)
    if (text.starts_with(beginning)) return true;
  return false;
}

/// Takes `alice from 10.0.0.5 port 35712` off the line's end: the name is the client's and may hold anything.
bool takeClient(LineEnd& line, Event& event) {
  if (!wholeNumber(line.takeBehind(" port ").value_or(std::string_view{}))) return false;
  const auto address = line.takeBehind(" from ");
  if (!address || !isAddress(*address)) return false;
  event.address = *address;
  event.user = line.rest();
  return true;
}

/// `password for invalid user eve from 10.0.0.5 port 35712 ssh2`, and with a key its fingerprint behind that.
EventKind readAuthentication(std::string_view text, bool isAccepted, Event& event) {
  LineFront front(text);
  const std::string_view method = front.takeWord();
  if (!front.take("for ")) return EventKind::Unknown;
  (void)front.take("invalid user ");
  LineEnd line(front.rest());
  if (!line.take(" ssh2")) {
    if (!line.takeBehind(" ssh2: ")) return EventKind::Unknown;
  }
  if (!takeClient(line, event)) return EventKind::Unknown;
  if (isAccepted) return EventKind::LoggedOn;
  // A client tries what it has, one after the other: "none" and keys come before the password.
  if (method == "none") return EventKind::Known;
  event.refusal = method == "password" ? LogonResult::BadPassword : LogonResult::Refused;
  return EventKind::Refused;
}

/// `Connection closed by authenticating user bob 10.0.0.5 port 35706 [preauth]`
EventKind readEnd(std::string_view text, Event& event) {
  LineEnd line(text);
  (void)line.take(" [preauth]");
  if (!wholeNumber(line.takeBehind(" port ").value_or(std::string_view{}))) return EventKind::Unknown;
  LineFront user(line.rest());
  const auto address = line.takeBehind(" ");
  event.address = address.value_or(line.rest());
  if (!isAddress(event.address)) return EventKind::Unknown;
  if (address && (user.take("authenticating user ") || user.take("invalid user ") || user.take("user ")) &&
      user.rest().size() > address->size())
    event.user = user.rest().substr(0, user.rest().size() - address->size() - 1);
  return EventKind::Close;
}

EventKind readSshd(std::string_view text, Event& event) {
  LineFront line(text);
  if (line.take("Accepted ")) return readAuthentication(line.rest(), true, event);
  if (line.take("Failed ")) return readAuthentication(line.rest(), false, event);
  if (line.take("Connection closed by ")) return readEnd(line.rest(), event);
  if (line.take("Disconnected from ")) return readEnd(line.rest(), event);
  if (!startsWithAny(text, kSshdRemarks)) return EventKind::Unknown;
  event.key = {};  // of the server itself, or of a process that is no session's own
  return EventKind::Known;
}

/// `for local user alice from [10.0.0.5]`
bool readSession(std::string_view text, Event& event) {
  LineFront front(text);
  if (!front.take("for local user ") || !front.rest().ends_with(']')) return false;
  LineEnd line(front.rest().substr(0, front.rest().size() - 1));
  const auto address = line.takeBehind(" from [");
  if (!address) return false;
  event.address = *address;
  event.user = line.rest();
  return true;
}

/// `"/in/a.zip" bytes read 0 written 81116`, read from its end. Nothing moved: it may have been either way.
EventKind readClose(std::string_view text, bool isForced, Event& event) {
  LineEnd line(text);
  const auto written = wholeNumber(line.takeBehind(" written ").value_or(std::string_view{}));
  const auto read = wholeNumber(line.takeBehind(" bytes read ").value_or(std::string_view{}));
  const std::string_view path = line.rest();
  if (!written || !read || path.size() < 2 || !path.starts_with('"') || !path.ends_with('"')) return EventKind::Unknown;
  event.path = path.substr(1, path.size() - 2);
  if (*written == 0 && *read == 0) return EventKind::Known;
  event.action = *written > 0 ? FileAction::Upload : FileAction::Download;
  event.bytes = *written > 0 ? *written : *read;
  event.outcome = isForced ? Outcome::Failed : Outcome::Ok;
  event.isAborted = isForced;
  return EventKind::Transfer;
}

/// `"/up.bin" flags WRITE,CREATE,TRUNCATE mode 0644`
EventKind readOpen(std::string_view text, Event& event) {
  LineEnd line(text);
  if (!line.takeBehind(" mode ")) return EventKind::Unknown;
  const auto flags = line.takeBehind(" flags ");
  const std::string_view path = line.rest();
  if (!flags || path.size() < 2 || !path.starts_with('"') || !path.ends_with('"')) return EventKind::Unknown;
  event.path = path.substr(1, path.size() - 2);
  event.verb = Verb::SftpOpen;
  event.request = kNextLine;
  event.action = flags->find("WRITE") == std::string_view::npos ? FileAction::Download : FileAction::Upload;
  return EventKind::Request;
}

EventKind readChange(FileAction action, std::string_view text, Event& event) {
  event.action = action;
  event.outcome = Outcome::Ok;  // a status other than that is written behind it
  event.path = text;
  return EventKind::FileChange;
}

/// The text between quotes, of which there may be more inside.
std::string_view unquoted(std::string_view text) {
  return text.size() >= 2 && text.starts_with('"') && text.ends_with('"') ? text.substr(1, text.size() - 2) : text;
}

/// `"/up.bin" new "/folder/renamed.bin"`; where a name holds the middle too, all of it is the path.
EventKind readRename(std::string_view text, Event& event) {
  constexpr std::string_view kMiddle = "\" new \"";
  const EventKind kind = readChange(FileAction::Rename, unquoted(text), event);
  const std::size_t at = event.path.find(kMiddle);
  if (at == std::string_view::npos || event.path.find(kMiddle, at + 1) != std::string_view::npos) return kind;
  event.toPath = event.path.substr(at + kMiddle.size());
  event.path = event.path.substr(0, at);
  return kind;
}

EventKind readStatus(std::string_view text, Event& event) {
  for (std::size_t i = 0; i < kStatusTexts.size(); ++i) {
    if (text != kStatusTexts[i]) continue;
    event.reply = static_cast<ReplyCode>(kSftpStatus + i);
    event.request = kNextLine;
    return EventKind::Answer;
  }
  return EventKind::Known;
}

EventKind readSftp(std::string_view text, Event& event) {
  LineFront line(text);
  if (line.take("session opened ")) return readSession(line.rest(), event) ? EventKind::LoggedOn : EventKind::Unknown;
  if (line.take("session closed ")) return readSession(line.rest(), event) ? EventKind::Close : EventKind::Unknown;
  if (line.take("close ")) return readClose(line.rest(), false, event);
  if (line.take("forced close ")) return readClose(line.rest(), true, event);
  if (line.take("open ")) return readOpen(line.rest(), event);
  if (line.take("remove name ")) return readChange(FileAction::Delete, unquoted(line.rest()), event);
  if (line.take("rmdir name ")) return readChange(FileAction::RemoveFolder, unquoted(line.rest()), event);
  if (line.take("rename old ") || line.take("posix-rename old ")) return readRename(line.rest(), event);
  if (line.take("sent status ")) return readStatus(line.rest(), event);
  if (line.take("mkdir name ")) {
    LineEnd name(line.rest());
    (void)name.takeBehind(" mode ");
    return readChange(FileAction::MakeFolder, unquoted(name.rest()), event);
  }
  return startsWithAny(text, kSftpRemarks) ? EventKind::Known : EventKind::Unknown;
}

class OpenSsh final : public Grammar {
 public:
  std::string_view name() const override { return "openssh"; }
  std::string_view title() const override { return "OpenSSH"; }
  GrammarTraits traits() const override {
    return {.sessions = SessionRule::ByProcessNeighbours,
            .neighbours = 8,
            .missing =
                "OpenSSH writes files only where its sftp subsystem runs with -l INFO or VERBOSE, and failures "
                "with VERBOSE only; a transfer of an empty file, and which of sshd's log-ons began an SFTP "
                "session, it does not write: they are put together by address, user and process number."};
  }
  /// Its lines stand in logs that are recognised as a syslog.
  int recognise(const LogStart&, Dialect&) const override { return 0; }
  void parse(std::string_view, const Dialect&, Event&) const override {}
};

}  // namespace

void readOpenSshMessage(std::string_view message, Event& event) {
  event.speaker = Speaker::Server;
  event.text = {};
  event.kind = readSftp(message, event);
  if (event.kind == EventKind::Unknown) event.kind = readSshd(message, event);
  if (event.kind == EventKind::Unknown) event.text = message;
}

const Grammar& openSsh() {
  static const OpenSsh grammar;
  return grammar;
}

}  // namespace quorvel
