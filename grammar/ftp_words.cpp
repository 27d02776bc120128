#include "grammar/ftp_words.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "grammar/line_front.h"

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
constexpr std::array kOthers = {
    wordNumber("ACCT"), wordNumber("ADAT"), wordNumber("ALLO"), wordNumber("AUTH"), wordNumber("AVBL"),
    wordNumber("CCC"),  wordNumber("CLNT"), wordNumber("COMB"), wordNumber("CONF"), wordNumber("CSID"),
    wordNumber("EPRT"), wordNumber("EPSV"), wordNumber("ENC"),  wordNumber("FEAT"), wordNumber("HASH"),
    wordNumber("HELP"), wordNumber("HOST"), wordNumber("LANG"), wordNumber("LIST"), wordNumber("LPRT"),
    wordNumber("LPSV"), wordNumber("MDTM"), wordNumber("MFCT"), wordNumber("MFF"),  wordNumber("MFMT"),
    wordNumber("MIC"),  wordNumber("MLSD"), wordNumber("MLST"), wordNumber("MODE"), wordNumber("NLST"),
    wordNumber("NOOP"), wordNumber("OPTS"), wordNumber("PASV"), wordNumber("PBSZ"), wordNumber("PORT"),
    wordNumber("PROT"), wordNumber("REST"), wordNumber("RMDA"), wordNumber("SITE"), wordNumber("SIZE"),
    wordNumber("SMNT"), wordNumber("STAT"), wordNumber("STRU"), wordNumber("SYST"), wordNumber("THMB"),
    wordNumber("TYPE"), wordNumber("XCRC"), wordNumber("XMD5"), wordNumber("XSHA")};

Verb verbOf(std::uint32_t number) {
  for (const VerbName& verb : kVerbs)
    if (verb.word == number) return verb.verb;
  return Verb::Other;
}

}  // namespace

Verb ftpVerb(std::string_view word) {
  return verbOf(wordNumber(word));
}

bool isFtpCommand(std::string_view text) {
  const std::uint32_t number = wordNumber(text.substr(0, text.find(' ')));
  if (number == 0) return false;
  return verbOf(number) != Verb::Other || std::find(kOthers.begin(), kOthers.end(), number) != kOthers.end();
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
