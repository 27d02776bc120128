// The transfer log of wu-ftpd's shape, which vsftpd, ProFTPD, Pure-FTPd and others write:
// `Sun Nov 22 01:03:39 2026 1 10.0.0.5 12345 /home/alice/up.bin b _ i r alice ftp 0 * c`
#include <array>

#include "grammar/all_grammars.h"
#include "grammar/civil_time.h"

namespace quorvel {
namespace {

bool isOneOf(std::string_view word, std::string_view letters) {
  return word.size() == 1 && letters.find(word.front()) != std::string_view::npos;
}

/// What stands between the path and the user: type, flags, direction, access.
struct Middle {
  std::size_t begin = 0;  ///< of the type
  std::size_t end = 0;    ///< behind the access
  char direction = 0;
  char access = 0;
};

/// The only place in text that reads ` b _ i r `. None where there are two: a path or a name was made to look like it,
/// and nothing tells which one is the server's.
std::optional<Middle> findMiddle(std::string_view text) {
  std::optional<Middle> found;
  std::array<std::string_view, 4> words;  // the last four
  for (LineFront rest(text); !rest.isEmpty();) {
    words = {words[1], words[2], words[3], rest.takeWord()};
    if (!isOneOf(words[0], "ab") || words[1].empty() || words[1].size() > 3 ||
        words[1].find_first_not_of("_CUTZ") != std::string_view::npos || !isOneOf(words[2], "iod") ||
        !isOneOf(words[3], "agr"))
      continue;
    if (found) return std::nullopt;
    found = Middle{static_cast<std::size_t>(words[0].data() - text.data()),
                   static_cast<std::size_t>(words[3].data() - text.data()) + 1, words[2].front(), words[3].front()};
  }
  return found;
}

class Xferlog final : public Grammar {
 public:
  std::string_view name() const override { return "xferlog"; }
  std::string_view title() const override { return "xferlog"; }
  GrammarTraits traits() const override {
    return {.sessions = SessionRule::ByUserAndAddress,
            .tellsLogons = false,
            .tellsEnds = false,
            .missing =
                "A transfer log holds finished and broken transfers (and of some servers deletes) only: no "
                "log-ons, no sessions, no renames, no folders; sessions are put together from user and address, "
                "and some servers write blanks in names as '_'."};
  }

  void parse(std::string_view line, const Dialect&, Event& event) const override {
    LineFront front(line);
    const auto time = takeUnixDate(front);
    if (!time) return;
    const auto seconds = wholeNumber(front.takeWord());
    const std::string_view address = front.takeWord();
    const auto bytes = wholeNumber(front.takeWord());
    LineEnd end(front.rest());
    const std::string_view status = end.takeBehind(" ").value_or(std::string_view{});
    const bool hasFront = seconds && isAddress(address) && bytes;
    const bool hasEnd = isOneOf(status, "ci") && end.takeBehind(" ") /* id */ &&
                        isOneOf(end.takeBehind(" ").value_or(std::string_view{}), "01") /* authentication */ &&
                        end.takeBehind(" ") /* service */;
    const auto middle = hasFront && hasEnd ? findMiddle(end.rest()) : std::nullopt;
    if (!middle || middle->begin < 2 || middle->end >= end.rest().size()) return;
    event.time = *time;
    event.speaker = Speaker::Server;
    event.address = address;
    event.path = end.rest().substr(0, middle->begin - 1);
    // A guest's name is what was given as the password.
    event.user = middle->access == 'a' ? std::string_view("anonymous") : end.rest().substr(middle->end + 1);
    event.outcome = status == "c" ? Outcome::Ok : Outcome::Failed;
    if (middle->direction == 'd') {
      event.kind = EventKind::FileChange;
      event.action = FileAction::Delete;
      return;
    }
    event.kind = EventKind::Transfer;
    event.action = middle->direction == 'i' ? FileAction::Upload : FileAction::Download;
    event.isAborted = status == "i" && *bytes > 0;  // without a byte it may have been refused
    event.bytes = *bytes;
    event.seconds = *seconds;
  }
};

}  // namespace

const Grammar& xferlog() {
  static const Xferlog grammar;
  return grammar;
}

}  // namespace quorvel
