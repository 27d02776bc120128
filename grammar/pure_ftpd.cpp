// Pure-FTPd: what it sends to a syslog, and its own logs of transfers in the shapes clf, stats and w3c. Its xferlog is
// one.
#include "grammar/pure_ftpd.h"

#include <array>

#include "grammar/all_grammars.h"
#include "grammar/clf.h"
#include "grammar/ftp_words.h"
#include "grammar/line_front.h"
#include "grammar/w3c.h"

namespace quorvel {
namespace {

enum Variant {
  kClf,
  kStats,
  kW3c
};

/// Beginnings of what the server says of a session that is no log-on, file or end.
constexpr auto kRemarks =
    std::to_array<std::string_view>({"Can't ", "Unable to ", "Timeout", "Transfer aborted", "Quota exceeded", "Sorry",
                                     "TLS", "SSL", "The FTP", "Too many", "Server busy", "Rejected"});

/// `/home/alice//up.bin uploaded  (12345 bytes, 3215.00KB/sec)`, read from its end.
bool readTransfer(std::string_view text, Event& event) {
  LineEnd end(text);
  if (!end.take("KB/sec)") || !end.takeBehind(", ") || !end.take(" bytes")) return false;
  const auto bytes = wholeNumber(end.takeBehind("  (").value_or(std::string_view{}));
  const bool isUpload = end.take(" uploaded");
  if (!bytes || (!isUpload && !end.take(" downloaded"))) return false;
  event.action = isUpload ? FileAction::Upload : FileAction::Download;
  event.outcome = Outcome::Ok;
  event.path = end.rest();
  event.bytes = *bytes;
  return true;
}

/// `up.bin]->[folder/renamed.bin]`; where a name holds the middle too, all of it is the path.
void readRename(std::string_view text, Event& event) {
  constexpr std::string_view kMiddle = "]->[";
  if (text.ends_with(']')) text.remove_suffix(1);
  event.action = FileAction::Rename;
  event.outcome = Outcome::Ok;
  event.path = text;
  const std::size_t at = text.find(kMiddle);
  if (at == std::string_view::npos || text.find(kMiddle, at + 1) != std::string_view::npos) return;
  event.path = text.substr(0, at);
  event.toPath = text.substr(at + kMiddle.size());
}

/// `retr] [up.bin]`
EventKind readCommand(std::string_view text, Event& event) {
  LineFront line(text);
  const auto verb = line.takeUntil("] [");
  if (!verb || !line.rest().ends_with(']')) return EventKind::Unknown;
  event.verb = ftpVerb(*verb);
  event.text = line.rest().substr(0, line.rest().size() - 1);
  event.speaker = Speaker::Client;
  return EventKind::Command;
}

EventKind readWords(std::string_view text, Event& event) {
  constexpr std::string_view kLoggedOn = " is now logged in";
  LineFront line(text);
  if (line.take("Command [")) return readCommand(line.rest(), event);
  if (line.take("New connection from ")) return EventKind::Connect;
  if (line.take("Logout")) return EventKind::Close;
  if (text.ends_with(kLoggedOn)) {
    event.user = text.substr(0, text.size() - kLoggedOn.size());
    return EventKind::LoggedOn;
  }
  if (text == "Anonymous user logged in") {
    event.user = "ftp";  // as the lines that follow name it
    return EventKind::LoggedOn;
  }
  if (line.take("Authentication failed for user [") && line.rest().ends_with(']')) {
    event.user = line.rest().substr(0, line.rest().size() - 1);
    return EventKind::Refused;
  }
  if (line.take("File successfully renamed or moved: [")) {
    readRename(line.rest(), event);
    return EventKind::FileChange;
  }
  if (line.take("Deleted ")) {
    event.action = FileAction::Delete;
    event.outcome = Outcome::Ok;
    event.path = line.rest();
    return EventKind::FileChange;
  }
  if (readTransfer(text, event)) return EventKind::Transfer;
  for (const std::string_view remark : kRemarks)
    if (text.starts_with(remark)) return EventKind::Known;
  return EventKind::Unknown;
}

void tellTransfer(bool isUpload, std::string_view path, Event& event) {
  event.kind = EventKind::Transfer;
  event.speaker = Speaker::Server;
  event.action = isUpload ? FileAction::Upload : FileAction::Download;
  event.outcome = Outcome::Ok;
  event.path = path;
}

/// `10.0.0.5 - alice [22/Nov/2026:03:15:29 -0000] "PUT /srv/two%20words.txt" 200 12345`
void readClf(std::string_view line, Event& event) {
  const ClfLine parts = readClfLine(line);
  LineFront request(parts.request);
  const std::string_view verb = request.takeWord();
  LineFront rest(parts.rest);
  if (parts.time == kNoTime || (verb != "GET" && verb != "PUT") || !rest.take("200 ")) return;
  const auto bytes = wholeNumber(rest.rest());
  if (!bytes || request.isEmpty() || request.rest().find(' ') != std::string_view::npos) return;  // else a web server's
  tellTransfer(verb == "PUT", request.rest(), event);
  event.time = parts.time;
  event.address = parts.address;
  event.user = parts.user;
  event.bytes = *bytes;
}

/// `1795317478 6b025ee6.4b alice 10.0.0.5 U 12345 0 /srv/up.bin`: time, session, user, address, direction, bytes,
/// seconds, path.
void readStats(std::string_view line, Event& event) {
  LineFront front(line);
  const auto time = wholeNumber(front.takeWord());
  const std::string_view session = front.takeWord();
  const std::string_view user = front.takeWord();
  const std::string_view address = front.takeWord();
  const std::string_view direction = front.takeWord();
  const auto bytes = wholeNumber(front.takeWord());
  const auto seconds = wholeNumber(front.takeWord());
  const bool isSession = session.find_first_not_of("0123456789abcdef.") == std::string_view::npos &&
                         session.find('.') != std::string_view::npos;
  if (!time || *time <= 0 || *time > 0xFFFFFFFF || !isSession || !isAddress(address) || !bytes || !seconds ||
      (direction != "U" && direction != "D") || front.isEmpty())
    return;
  tellTransfer(direction == "U", front.rest(), event);
  event.time = static_cast<LogTime>(*time);
  event.key = session;
  event.address = address;
  event.user = user;
  event.bytes = *bytes;
  event.seconds = *seconds;
}

/// `2026-11-22 03:16:19 10.0.0.5 []created /srv/up.bin 226 alice 12345`
void readW3c(std::string_view line, const Dialect& dialect, Event& event) {
  if (line.starts_with('#')) {
    event.kind = EventKind::Known;
    return;
  }
  const W3cLine values(line, dialect);
  const std::string_view method = values[W3cField::Method];
  const bool isUpload = method == "[]created";
  const auto bytes = wholeNumber(values[W3cField::SentBytes]);
  if (!values.isValid() || (!isUpload && method != "[]sent") || !isAddress(values[W3cField::Address]) || !bytes) return;
  tellTransfer(isUpload, values[W3cField::Path], event);
  event.time = values.time();
  event.address = values[W3cField::Address];
  event.user = values[W3cField::User];
  event.bytes = *bytes;
}

class PureFtpd final : public Grammar {
 public:
  std::string_view name() const override { return "pure-ftpd"; }
  std::string_view title() const override { return "Pure-FTPd"; }
  GrammarTraits traits() const override {
    return {.sessions = SessionRule::ByUserAndAddress,
            .missing =
                "Pure-FTPd writes a transfer that the client broke off as done, no failed transfers and no "
                "folders; its syslog does not write which lines belong to one session unless it runs with "
                "--logpid; its own logs hold transfers only, and in the shapes clf and w3c names as %20 for a "
                "blank."};
  }

  int recognise(const LogStart& start, Dialect& dialect) const override {
    int most = 0;
    for (const int variant : {kClf, kStats, kW3c}) {
      Dialect trial;
      trial.variant = variant;
      const int lines = countLines(start, trial);
      if (lines <= most) continue;
      most = lines;
      dialect = trial;
    }
    return most;
  }
  bool hasDirectives() const override { return true; }
  void takeDirective(std::string_view line, Dialect& dialect) const override { takeW3cDirective(line, dialect); }

  void parse(std::string_view line, const Dialect& dialect, Event& event) const override {
    if (dialect.variant == kW3c) return readW3c(line, dialect, event);
    if (dialect.variant == kStats) return readStats(line, event);
    readClf(line, event);
  }

 private:
  int countLines(const LogStart& start, Dialect& dialect) const {
    int lines = 0;
    for (const std::string_view line : start.lines) {
      if (line.starts_with('#')) {
        takeW3cDirective(line, dialect);
        if (line.starts_with("#Software: Pure-FTPd") && dialect.variant == kW3c) ++lines;
        continue;
      }
      Event event;
      parse(line, dialect, event);
      if (event.kind != EventKind::Unknown) ++lines;
    }
    return lines;
  }
};

}  // namespace

void readPureFtpdMessage(std::string_view message, Event& event) {
  LineFront line(message);
  if (!line.take("(")) return;
  LineEnd who(line.takeUntil(") [").value_or(std::string_view{}));
  const auto address = who.takeBehind("@");
  const auto level = line.takeUntil("] ");
  if (!address || !isAddress(*address) || !level || level->size() > 8) return;
  event.speaker = Speaker::Server;
  event.address = *address;
  if (who.rest() != "?") event.user = who.rest();
  event.text = line.rest();
  event.kind = readWords(line.rest(), event);
}

const Grammar& pureFtpd() {
  static const PureFtpd grammar;
  return grammar;
}

}  // namespace quorvel
