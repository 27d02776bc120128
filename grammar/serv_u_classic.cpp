// Serv-U until version 6: `[2] Mon 06Jun05 08:03:11 - (000001) USER alice`, with or without the bracket.
//
// The number in the bracket tells who speaks: [2] is what a client sent, except for the connect line; all others are
// the server's. Without a bracket nothing tells it, and a sentence of the server counts only where it fits.
#include "grammar/all_grammars.h"
#include "grammar/ftp_words.h"
#include "grammar/serv_u_words.h"

namespace quorvel {
namespace {

constexpr int kClientBracket = 2;

class ServUClassic final : public Grammar {
 public:
  std::string_view name() const override { return "serv-u-classic"; }
  std::string_view title() const override { return "Serv-U, classic"; }
  GrammarTraits traits() const override { return {}; }

  int recognise(const LogStart& start, Dialect&) const override {
    int lines = 0;
    ServUFront front;
    for (const std::string_view line : start.lines)
      if (readFront(line, front)) ++lines;
    return lines;
  }

  void parse(std::string_view line, const Dialect&, Event& event) const override {
    ServUFront front;
    if (!readFront(line, front)) return;
    event.time = front.time;
    event.key = front.key;
    event.text = front.text;
    if (front.key.empty()) {
      readServerLine(front.text, event);
    } else if (front.bracket == kClientBracket) {
      event.speaker = Speaker::Client;
      const bool isConnect = front.text.starts_with("Connected to ") && readServUSentence(front.text, event);
      if (!isConnect) readFtpCommand(front.text, event);
    } else {
      event.speaker = front.bracket < 0 ? Speaker::Unsaid : Speaker::Server;
      readSessionLine(front.text, event);
    }
  }

 private:
  static bool readFront(std::string_view line, ServUFront& front) {
    return readServUFront(line, !line.empty() && line.front() == '[' ? 1 : 0, front);
  }

  static void readServerLine(std::string_view text, Event& event) {
    if (text.starts_with("Starting FTP Server")) {
      event.kind = EventKind::ServerStart;
    } else if (isServUListening(text)) {
      event.kind = EventKind::Known;
    }
  }

  static void readSessionLine(std::string_view text, Event& event) {
    if (readFtpReply(text, event) || readServUSentence(text, event)) return;
    if (event.speaker == Speaker::Unsaid && isFtpCommand(text)) readFtpCommand(text, event);
  }
};

}  // namespace

const Grammar& servUClassic() {
  static const ServUClassic grammar;
  return grammar;
}

}  // namespace quorvel
