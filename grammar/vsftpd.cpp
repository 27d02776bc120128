#include "grammar/vsftpd.h"

#include <array>

#include "grammar/all_grammars.h"
#include "grammar/civil_time.h"
#include "grammar/ftp_words.h"

namespace quorvel {
namespace {

constexpr std::string_view kClientMark = ": Client \"";

enum class Act {
  Connect,
  Command,
  Reply,
  Debug,
  Login,
  Transfer,
  Change,
  Chmod
};

struct ActName {
  std::string_view name;
  Act act;
  Outcome outcome = Outcome::Unknown;
  FileAction action = FileAction::Download;
};

constexpr std::array<ActName, 20> kActs = {{
    {"CONNECT", Act::Connect},
    {"FTP command", Act::Command},
    {"FTP response", Act::Reply},
    {"DEBUG", Act::Debug},
    {"OK LOGIN", Act::Login, Outcome::Ok},
    {"FAIL LOGIN", Act::Login, Outcome::Failed},
    {"OK DOWNLOAD", Act::Transfer, Outcome::Ok, FileAction::Download},
    {"FAIL DOWNLOAD", Act::Transfer, Outcome::Failed, FileAction::Download},
    {"OK UPLOAD", Act::Transfer, Outcome::Ok, FileAction::Upload},
    {"FAIL UPLOAD", Act::Transfer, Outcome::Failed, FileAction::Upload},
    {"OK DELETE", Act::Change, Outcome::Ok, FileAction::Delete},
    {"FAIL DELETE", Act::Change, Outcome::Failed, FileAction::Delete},
    {"OK RENAME", Act::Change, Outcome::Ok, FileAction::Rename},
    {"FAIL RENAME", Act::Change, Outcome::Failed, FileAction::Rename},
    {"OK MKDIR", Act::Change, Outcome::Ok, FileAction::MakeFolder},
    {"FAIL MKDIR", Act::Change, Outcome::Failed, FileAction::MakeFolder},
    {"OK RMDIR", Act::Change, Outcome::Ok, FileAction::RemoveFolder},
    {"FAIL RMDIR", Act::Change, Outcome::Failed, FileAction::RemoveFolder},
    {"OK CHMOD", Act::Chmod},
    {"FAIL CHMOD", Act::Chmod},
}};

/// The act whose name is all of text, or, where a user stands in front of it, its end behind "] ".
const ActName* actAtEnd(std::string_view text) {
  for (const ActName& act : kActs) {
    if (!text.ends_with(act.name)) continue;
    const std::string_view front = text.substr(0, text.size() - act.name.size());
    if (front.empty() || (front.starts_with('[') && front.ends_with("] "))) return &act;
  }
  return nullptr;
}

/// `, "path", 12345 bytes, 35353.85Kbyte/sec`, read from its end.
bool readFile(std::string_view rest, Event& event) {
  LineEnd end(rest);
  if (end.take("Kbyte/sec")) (void)end.takeBehind(", ");
  if (end.take(" bytes")) {
    const auto bytes = wholeNumber(end.takeBehind(", ").value_or(std::string_view{}));
    if (!bytes) return false;
    event.bytes = *bytes;
  }
  LineFront path(end.rest());
  if (!path.take(", \"") || !path.rest().ends_with('"')) return false;
  event.path = path.rest().substr(0, path.rest().size() - 1);
  return true;
}

/// `/from /to`: both begin with a slash. Blanks in front of slashes inside of them leave open where the second begins;
/// then all of it is the path.
void splitRename(Event& event) {
  const std::size_t at = event.path.find(" /");
  if (at == std::string_view::npos || event.path.find(" /", at + 1) != std::string_view::npos) return;
  event.toPath = event.path.substr(at + 1);
  event.path = event.path.substr(0, at);
}

EventKind kindOf(const ActName& act, std::string_view rest, Event& event) {
  switch (act.act) {
    case Act::Connect:
      return rest.empty() ? EventKind::Connect : EventKind::Unknown;
    case Act::Login:
      if (!rest.empty() && !(rest.starts_with(", anon password \"") && rest.ends_with('"'))) return EventKind::Unknown;
      return act.outcome == Outcome::Ok ? EventKind::LoggedOn : EventKind::Refused;
    case Act::Debug:
    case Act::Chmod:
      return EventKind::Known;
    case Act::Transfer:
      return readFile(rest, event) ? EventKind::Transfer : EventKind::Unknown;
    case Act::Change:
      if (!readFile(rest, event)) return EventKind::Unknown;
      if (act.action == FileAction::Rename) splitRename(event);
      return EventKind::FileChange;
    case Act::Command:
    case Act::Reply:
      break;
  }
  if (!rest.starts_with(", \"") || !rest.ends_with('"') || rest.size() < 4) return EventKind::Unknown;
  const std::string_view text = rest.substr(3, rest.size() - 4);
  // The lines inside a long reply have no digits.
  if (act.act == Act::Reply) return readFtpReply(text, event) ? EventKind::Reply : EventKind::Known;
  readFtpCommand(text, event);
  event.speaker = Speaker::Client;
  return EventKind::Command;
}

/// The message as it reads with the server's words in front of the mark at that place.
void readAt(std::string_view message, std::size_t mark, Event& event) {
  const std::string_view front = message.substr(0, mark);
  const ActName* act = actAtEnd(front);
  LineFront line(message.substr(mark + kClientMark.size()));
  const auto address = line.takeUntil("\"");
  if (act == nullptr || !address || !isAddress(*address)) return;
  event.speaker = Speaker::Server;
  event.address = *address;
  event.action = act->action;
  event.outcome = act->outcome;
  if (front.size() > act->name.size()) event.user = front.substr(1, front.size() - act->name.size() - 3);
  event.kind = kindOf(*act, line.rest(), event);
}

bool needsLogon(EventKind kind) {
  return kind == EventKind::LoggedOn || kind == EventKind::Transfer || kind == EventKind::FileChange;
}

class Vsftpd final : public Grammar {
 public:
  std::string_view name() const override { return "vsftpd"; }
  std::string_view title() const override { return "vsftpd"; }
  GrammarTraits traits() const override {
    return {.sessions = SessionRule::ByProcessNeighbours,
            .tellsEnds = false,
            .missing =
                "vsftpd does not write which lines belong to one session, when a session ended or why a log-on "
                "was refused, and writes an upload that the client broke off as done; sessions are put together from "
                "address, user and process number."};
  }

  void parse(std::string_view line, const Dialect&, Event& event) const override {
    LineFront front(line);
    const auto time = takeUnixDate(front);
    if (!time || !front.take("[pid ")) return;
    const std::string_view process = front.takeDigits();
    if (process.empty() || !front.take("] ")) return;
    event.time = *time;
    event.key = process;
    readVsftpdMessage(front.rest(), event);
  }
};

}  // namespace

void readVsftpdMessage(std::string_view message, Event& event) {
  // A name or a path may hold what looks like the server's own words. Each place where they may stand is tried; where
  // more than one fits the whole line, nothing tells which is the server's.
  constexpr int kMostMarks = 8;
  const Event untold = event;
  int readings = 0;
  int marks = 0;
  for (std::size_t at = message.find(kClientMark); at != std::string_view::npos;
       at = message.find(kClientMark, at + 1)) {
    if (++marks > kMostMarks) break;
    Event trial = untold;
    readAt(message, at, trial);
    // Nobody logs on with a name that holds the server's words.
    if (trial.kind == EventKind::Unknown || (marks > 1 && needsLogon(trial.kind))) continue;
    event = trial;
    ++readings;
  }
  if (readings != 1 || marks > kMostMarks) {
    event = untold;
    event.text = message;
  }
}

const Grammar& vsftpd() {
  static const Vsftpd grammar;
  return grammar;
}

}  // namespace quorvel
