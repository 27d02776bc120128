// ProFTPD: its SystemLog, also by way of a syslog, and its ExtendedLog in the shape it writes without a LogFormat, and
// with %P behind that. Its TransferLog is an xferlog.
#include "grammar/proftpd.h"

#include <array>

#include "grammar/all_grammars.h"
#include "grammar/civil_time.h"
#include "grammar/clf.h"
#include "grammar/ftp_words.h"

namespace quorvel {
namespace {

/// Beginnings of what the server says of a session that is no log-on, file or end.
constexpr auto kRemarks = std::to_array<std::string_view>(
    {"notice: ", "error: ", "warning: ", "mod_", "Preparing to chroot", "Environment successfully chroot", "FTP ",
     "Maximum log", "Refused ", "PAM", "user '", "Connection "});

/// `alice: Login successful.`, `bob (Login failed): Incorrect password.`, `eve: no such user found from ...`. The name
/// is the client's and may hold anything: the words behind it are those at the line's end.
EventKind readLogon(std::string_view text, Event& event) {
  constexpr std::string_view kSuccess = ": Login successful.";
  if (text.ends_with(kSuccess)) {
    event.user = text.substr(0, text.size() - kSuccess.size());
    return EventKind::LoggedOn;
  }
  for (const std::string_view mark : {": no such user found from ", " (Login failed): ", ": "}) {
    LineEnd end(text);
    const auto why = end.takeBehind(mark);
    if (!why || end.rest().empty()) continue;
    event.user = end.rest();
    if (why->starts_with("Incorrect password")) event.refusal = LogonResult::BadPassword;
    return EventKind::Refused;
  }
  return EventKind::Unknown;
}

EventKind readSession(std::string_view text, Event& event) {
  LineFront line(text);
  if (line.take("USER ") || line.take("ANON ")) return readLogon(line.rest(), event);
  if (line.take("SECURITY VIOLATION: Root login attempted")) {
    event.user = "root";
    return EventKind::Refused;
  }
  for (const std::string_view protocol : {"FTP session ", "SSH2 session "}) {
    if (!line.take(protocol)) continue;
    if (line.rest().starts_with("opened")) return EventKind::Connect;
    if (line.rest().starts_with("closed")) return EventKind::Close;
    return EventKind::Known;
  }
  for (const std::string_view remark : kRemarks)
    if (text.starts_with(remark)) return EventKind::Known;
  return EventKind::Unknown;
}

/// A line about the server itself, which belongs to no session.
void readServer(std::string_view text, Event& event) {
  event.key = {};
  event.kind = text.starts_with("ProFTPD") && text.ends_with("STARTUP") ? EventKind::ServerStart : EventKind::Known;
}

/// A transfer's size stands behind its reply; what stands there for other commands is none.
bool isTransfer(Verb verb) {
  return verb == Verb::Retrieve || verb == Verb::Store || verb == Verb::Append || verb == Verb::StoreUnique;
}

/// `10.0.0.5 UNKNOWN alice [22/Nov/2026:03:14:26 +0000] "STOR up.bin" 226 12345`, and the process where it was asked
/// for.
void readExtended(std::string_view line, Event& event) {
  const ClfLine parts = readClfLine(line);
  if (parts.time == kNoTime || !isFtpCommand(parts.request)) return;
  LineFront rest(parts.rest);
  const std::string_view reply = rest.takeWord();
  const std::string_view size = rest.takeWord();
  const std::string_view process = rest.takeWord();
  Event command;
  if (reply != "-" && (reply.size() != 3 || !readFtpReply(reply, command))) return;
  if ((size != "-" && !wholeNumber(size)) || (!process.empty() && !wholeNumber(process)) || !rest.isEmpty()) return;
  readFtpCommand(parts.request, event);
  event.speaker = Speaker::Client;
  event.time = parts.time;
  event.reply = command.reply;
  event.key = process;
  event.address = parts.address;
  event.user = parts.user;
  if (isTransfer(event.verb)) event.bytes = wholeNumber(size).value_or(-1);
}

class Proftpd final : public Grammar {
 public:
  std::string_view name() const override { return "proftpd"; }
  std::string_view title() const override { return "ProFTPD"; }
  GrammarTraits traits() const override {
    return {.missing =
                "ProFTPD's SystemLog holds log-ons only, and with the usual SyslogLevel only those that failed; an "
                "ExtendedLog without %P in its LogFormat does not write which lines belong to one session; an upload "
                "that the client broke off is written as done."};
  }

  int recognise(const LogStart& start, Dialect& dialect) const override {
    int lines = 0;
    for (const std::string_view line : start.lines) {
      Event event;
      parse(line, dialect, event);
      if (event.kind != EventKind::Unknown || !event.key.empty()) ++lines;
    }
    return lines;
  }

  void parse(std::string_view line, const Dialect&, Event& event) const override {
    LineFront front(line);
    const auto time = takeIsoDate(front);
    if (!time) return readExtended(line, event);
    if (front.takeWord().empty() || !front.take("proftpd[")) return;
    const std::string_view process = front.takeDigits();
    if (process.empty() || !front.take("]")) return;
    event.time = *time;
    event.key = process;
    if (front.take(": ")) return readServer(front.rest(), event);
    if (front.take(" ")) readProftpdMessage(front.rest(), event);
  }
};

}  // namespace

void readProftpdMessage(std::string_view message, Event& event) {
  LineFront line(message);
  const std::string_view server = line.takeWord();
  event.speaker = Speaker::Server;
  if (server.ends_with(':') || line.take("- ")) return readServer(line.rest(), event);
  if (!line.take("(") || !line.takeUntil("[")) return;
  const auto address = line.takeUntil("]");
  if (!address || !isAddress(*address) || (!line.take("): ") && !line.take(") - "))) return;
  event.address = *address;
  event.text = line.rest();
  event.kind = readSession(line.rest(), event);
}

const Grammar& proftpd() {
  static const Proftpd grammar;
  return grammar;
}

}  // namespace quorvel
