#include "grammar/ftp_words.h"

#include <cstdint>
#include <string>

#include "grammar/line_front.h"
#include "log/text.h"

namespace quorvel {
namespace {

/// Up to four letters in upper case, as one number; 0 for no letter and for more.
constexpr std::uint32_t wordNumber(std::string_view word) {
  if (word.size() > 4) return 0;
  std::uint32_t number = 0;
  for (const char c : word)
    number = number << 8 | static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
  return number;
}

struct VerbName {
  constexpr VerbName(std::string_view name, Verb meaning) : word(wordNumber(name)), verb(meaning) {}
  std::uint32_t word;
  Verb verb;
};

constexpr VerbName kVerbs[] = {
    {"USER", Verb::User},         {"PASS", Verb::Pass},        {"REIN", Verb::Reinitialise},
    {"QUIT", Verb::Quit},         {"RETR", Verb::Retrieve},    {"STOR", Verb::Store},
    {"APPE", Verb::Append},       {"STOU", Verb::StoreUnique}, {"ABOR", Verb::Abort},
    {"DELE", Verb::Delete},       {"RNFR", Verb::RenameFrom},  {"RNTO", Verb::RenameTo},
    {"MKD", Verb::MakeFolder},    {"XMKD", Verb::MakeFolder},  {"RMD", Verb::RemoveFolder},
    {"XRMD", Verb::RemoveFolder}, {"CWD", Verb::ChangeFolder}, {"XCWD", Verb::ChangeFolder},
    {"CDUP", Verb::ChangeUp},     {"XCUP", Verb::ChangeUp},    {"PWD", Verb::PrintFolder},
    {"XPWD", Verb::PrintFolder},
};

/// Commands that mean nothing to a session.
constexpr std::string_view kOthers =
    " ACCT ADAT ALLO AUTH AVBL CCC CLNT COMB CONF CSID EPRT EPSV ENC FEAT HASH HELP HOST LANG LIST LPRT LPSV MDTM MFCT "
    "MFF MFMT MIC MLSD MLST MODE NLST NOOP OPTS PASV PBSZ PORT PROT REST RMDA SITE SIZE SMNT STAT STRU SYST THMB TYPE "
    "XCRC XMD5 XSHA ";

}  // namespace

Verb ftpVerb(std::string_view word) {
  const std::uint32_t number = wordNumber(word);
  for (const VerbName& verb : kVerbs)
    if (verb.word == number) return verb.verb;
  return Verb::Other;
}

bool isFtpCommand(std::string_view text) {
  const std::string_view word = text.substr(0, text.find(' '));
  if (ftpVerb(word) != Verb::Other) return true;
  return word.size() >= 3 && word.size() <= 4 && kOthers.find(" " + upperCase(word) + " ") != std::string_view::npos;
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
