#include "grammar/ftp_words.h"

#include <array>
#include <utility>

#include "grammar/line_front.h"

namespace quorvel {
namespace {

constexpr std::array<std::pair<std::string_view, Verb>, 22> kVerbs = {{
    {"USER", Verb::User},         {"PASS", Verb::Pass},        {"REIN", Verb::Reinitialise},
    {"QUIT", Verb::Quit},         {"RETR", Verb::Retrieve},    {"STOR", Verb::Store},
    {"APPE", Verb::Append},       {"STOU", Verb::StoreUnique}, {"ABOR", Verb::Abort},
    {"DELE", Verb::Delete},       {"RNFR", Verb::RenameFrom},  {"RNTO", Verb::RenameTo},
    {"MKD", Verb::MakeFolder},    {"XMKD", Verb::MakeFolder},  {"RMD", Verb::RemoveFolder},
    {"XRMD", Verb::RemoveFolder}, {"CWD", Verb::ChangeFolder}, {"XCWD", Verb::ChangeFolder},
    {"CDUP", Verb::ChangeUp},     {"XCUP", Verb::ChangeUp},    {"PWD", Verb::PrintFolder},
    {"XPWD", Verb::PrintFolder},
}};

}  // namespace

Verb ftpVerb(std::string_view word) {
  std::array<char, 4> upper{};
  if (word.empty() || word.size() > upper.size()) return Verb::Other;
  for (std::size_t i = 0; i < word.size(); ++i)
    upper[i] = word[i] >= 'a' && word[i] <= 'z' ? static_cast<char>(word[i] - 'a' + 'A') : word[i];
  for (const auto& [name, verb] : kVerbs)
    if (name == std::string_view(upper.data(), word.size())) return verb;
  return Verb::Other;
}

void readFtpCommand(std::string_view text, Event& event) {
  LineFront line(text);
  event.kind = EventKind::Command;
  event.verb = ftpVerb(line.takeWord());
  event.text = line.rest();
}

bool readFtpReply(std::string_view text, Event& event) {
  if (text.size() < 3 || text[0] < '1' || text[0] > '6' || !isDigit(text[1]) || !isDigit(text[2])) return false;
  if (text.size() > 3 && text[3] != ' ' && text[3] != '-') return false;
  event.kind = EventKind::Reply;
  event.reply = static_cast<ReplyCode>((text[0] - '0') * 100 + (text[1] - '0') * 10 + (text[2] - '0'));
  event.text = text.substr(text.size() > 3 ? 4 : 3);
  return true;
}

}  // namespace quorvel
