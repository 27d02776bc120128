// IIS's FTP service: W3C extended logs of versions 7 to 10, where a session has an id, and of 5 and 6, where its number
// stands in front of the method. One line holds a command and what became of it.
#include "grammar/all_grammars.h"
#include "grammar/ftp_words.h"
#include "grammar/line_front.h"
#include "grammar/w3c.h"

namespace quorvel {
namespace {

enum Variant {
  kWithSessionIds,
  kWithNumbers  ///< versions 5 and 6
};

bool isUpload(Verb verb) {
  return verb == Verb::Store || verb == Verb::Append || verb == Verb::StoreUnique;
}

EventKind kindOf(std::string_view method, const W3cLine& values, Event& event) {
  if (method == "ControlChannelOpened") return EventKind::Connect;
  if (method == "ControlChannelClosed" || method == "closed") return EventKind::Close;
  if (method == "DataChannelOpened" || method == "DataChannelClosed") return EventKind::Known;
  Event reply;
  const std::string_view status = values[W3cField::Status];
  if (!status.empty() && status != "0" && (status.size() != 3 || !readFtpReply(status, reply)))
    return EventKind::Unknown;
  const bool isSent = method == "sent";
  const bool isReceived = method == "created" || method == "appended";
  if (isSent || isReceived) {
    event.action = isSent ? FileAction::Download : FileAction::Upload;
    event.outcome = reply.reply == 0 ? Outcome::Unknown : reply.reply < 400 ? Outcome::Ok : Outcome::Failed;
    event.bytes = wholeNumber(values[isSent ? W3cField::SentBytes : W3cField::ReceivedBytes]).value_or(-1);
    event.path = values[W3cField::Path];
    return EventKind::Transfer;
  }
  event.verb = ftpVerb(method);
  event.text = values[W3cField::Path];
  event.path = values[W3cField::FullPath];
  event.reply = reply.reply;
  event.speaker = Speaker::Client;
  if (event.verb == Verb::Retrieve) event.bytes = wholeNumber(values[W3cField::SentBytes]).value_or(-1);
  if (isUpload(event.verb)) event.bytes = wholeNumber(values[W3cField::ReceivedBytes]).value_or(-1);
  return isFtpCommand(method) ? EventKind::Command : EventKind::Unknown;
}

class Iis final : public Grammar {
 public:
  std::string_view name() const override { return "iis"; }
  std::string_view title() const override { return "IIS"; }
  GrammarTraits traits() const override {
    return {.isUtc = true,
            .missing =
                "IIS writes sizes only where sc-bytes and cs-bytes are chosen for its log, blanks in names as "
                "'+', and times in UTC."};
  }

  int recognise(const LogStart& start, Dialect& dialect) const override {
    int lines = 0;
    for (const std::string_view line : start.lines) {
      if (line.starts_with('#')) {
        takeW3cDirective(line, dialect);
        if (line.starts_with("#Software: Microsoft Internet Information Services")) ++lines;
        continue;
      }
      Event event;
      parse(line, dialect, event);
      if (event.kind == EventKind::Unknown) continue;
      ++lines;
      if (W3cLine(line, dialect)[W3cField::Method].starts_with('[')) dialect.variant = kWithNumbers;
    }
    return hasFtp(start, dialect) ? lines : 0;
  }
  bool hasDirectives() const override { return true; }
  void takeDirective(std::string_view line, Dialect& dialect) const override { takeW3cDirective(line, dialect); }

  void parse(std::string_view line, const Dialect& dialect, Event& event) const override {
    if (line.starts_with('#')) {
      // Numbers begin anew with the service, which then writes its head again.
      const bool isStart = dialect.variant == kWithNumbers && line.starts_with("#Software:");
      event.kind = isStart ? EventKind::ServerStart : EventKind::Known;
      return;
    }
    const W3cLine values(line, dialect);
    if (!values.isValid() || !isAddress(values[W3cField::Address])) return;
    event.time = values.time();
    event.key = values[W3cField::Session];
    LineFront method(values[W3cField::Method]);
    if (method.take("[")) {
      event.key = method.takeDigits();
      if (event.key.empty() || !method.take("]")) return;
    }
    event.address = values[W3cField::Address];
    event.user = values[W3cField::User];
    event.speaker = Speaker::Server;
    if (const auto taken = wholeNumber(values[W3cField::TimeTaken])) event.seconds = *taken / 1000;
    event.kind = kindOf(method.rest(), values, event);
  }

 private:
  /// The web service of IIS writes the same shape. A log without lines yet may be either; its fields tell.
  bool hasFtp(const LogStart& start, const Dialect& dialect) const {
    for (const int field : dialect.fields)
      if (field == static_cast<int>(W3cField::Session)) return true;
    Dialect trial = dialect;
    for (const std::string_view line : start.lines) {
      Event event;
      if (!line.starts_with('#')) parse(line, trial, event);
      if (event.kind != EventKind::Unknown) return true;
    }
    return false;
  }
};

}  // namespace

const Grammar& iis() {
  static const Iis grammar;
  return grammar;
}

}  // namespace quorvel
