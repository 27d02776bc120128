// Serv-U from version 7 on: `[20] Tue 19Jan21 00:18:26 - (108422) USER alice`. The number in the bracket has two digits
// and tells who speaks.
#include "grammar/all_grammars.h"
#include "grammar/ftp_words.h"
#include "grammar/line_front.h"
#include "grammar/serv_u_words.h"
#include "grammar/sftp_words.h"

namespace quorvel {
namespace {

enum Bracket {
  kServer = 1,
  kSession = 2,
  kFtpCommand = 20,
  kFtpReply = 21,
  kSftpRequest = 30,
  kSftpAnswer = 31,
  kHttpRequest = 40,
  kHttpAnswer = 41,
};

class ServU final : public Grammar {
 public:
  std::string_view name() const override { return "serv-u"; }
  std::string_view title() const override { return "Serv-U"; }
  GrammarTraits traits() const override {
    return {.missing = "Sizes of files are known only where the server wrote its own sentence about them."};
  }

  int recognise(const LogStart& start, Dialect&) const override {
    int lines = 0;
    ServUFront front;
    for (const std::string_view line : start.lines)
      if (readServUFront(line, 2, front)) ++lines;
    return lines;
  }

  void parse(std::string_view line, const Dialect&, Event& event) const override {
    ServUFront front;
    if (!readServUFront(line, 2, front)) return;
    event.time = front.time;
    event.key = front.key;
    event.text = front.text;
    if (front.key.empty()) {
      readServerLine(front.text, event);
      return;
    }
    switch (front.bracket) {
      case kFtpCommand:
        event.speaker = Speaker::Client;
        readFtpCommand(front.text, event);
        break;
      case kSftpRequest:
        event.speaker = Speaker::Client;
        if (!readSftpRequest(front.text, event)) event.kind = EventKind::Known;
        break;
      case kHttpRequest:
        event.speaker = Speaker::Client;
        event.kind = EventKind::Known;
        break;
      case kSftpAnswer:
        event.speaker = Speaker::Server;
        if (!readSftpAnswer(front.text, event) && front.text.starts_with("SSH_")) event.kind = EventKind::Known;
        break;
      case kHttpAnswer:
        event.speaker = Speaker::Server;
        if (isHttpAnswer(front.text)) event.kind = EventKind::Known;
        break;
      case kServer:
      case kSession:
      case kFtpReply:
        event.speaker = Speaker::Server;
        if (!readServUSentence(front.text, event)) (void)readFtpReply(front.text, event);
        break;
      default:
        readUntold(front.text, event);
        break;
    }
  }

 private:
  static void readServerLine(std::string_view text, Event& event) {
    if (text.starts_with("Serv-U File Server")) {
      event.kind = EventKind::ServerStart;
    } else if (isServUListening(text)) {
      event.kind = EventKind::Known;
    }
  }

  static bool isHttpAnswer(std::string_view text) {
    return text.starts_with("HTTP") || (text.size() >= 3 && isDigit(text[0]) && isDigit(text[1]) && isDigit(text[2]));
  }

  /// A number that tells nothing: what stands behind it decides.
  static void readUntold(std::string_view text, Event& event) {
    if (readFtpReply(text, event) || readServUSentence(text, event)) return;
    if (isFtpCommand(text)) readFtpCommand(text, event);
  }
};

}  // namespace

const Grammar& servU() {
  static const ServU grammar;
  return grammar;
}

}  // namespace quorvel
