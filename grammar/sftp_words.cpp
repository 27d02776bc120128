#include "grammar/sftp_words.h"

#include <array>
#include <charconv>
#include <optional>
#include <utility>

#include "grammar/line_front.h"

namespace quorvel {
namespace {

constexpr std::array<std::pair<std::string_view, Verb>, 8> kRequests = {{
    {"SSH_FXP_OPEN", Verb::SftpOpen},
    {"SSH_FXP_CLOSE", Verb::SftpClose},
    {"SSH_FXP_READ", Verb::SftpRead},
    {"SSH_FXP_WRITE", Verb::SftpWrite},
    {"SSH_FXP_REMOVE", Verb::SftpRemove},
    {"SSH_FXP_RENAME", Verb::SftpRename},
    {"SSH_FXP_MKDIR", Verb::SftpMakeFolder},
    {"SSH_FXP_RMDIR", Verb::SftpRemoveFolder},
}};

/// `{0x00000003} `
std::optional<std::uint32_t> takeRequestNumber(LineFront& line) {
  if (!line.take("{0x")) return std::nullopt;
  const std::string_view text = line.rest();
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  if (error != std::errc()) return std::nullopt;
  line.skip(static_cast<std::size_t>(end - text.data()));
  return line.take("} ") ? std::optional(number) : std::nullopt;
}

/// `SSH_FXP_OPEN: `, without the colon and the blank.
std::string_view takeName(LineFront& line) {
  const std::string_view text = line.rest();
  const std::size_t end = text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_");
  const std::string_view name = text.substr(0, end);
  line.skip(name.size());
  (void)line.take(":");
  (void)line.take(" ");
  return name;
}

/// What stands in quotes, from the first to the last of them: a name may hold quotes of its own.
std::string_view takeQuoted(std::string_view& text) {
  const std::size_t begin = text.find('"');
  const std::size_t end = text.rfind('"');
  if (begin == std::string_view::npos || begin == end) return {};
  const std::string_view quoted = text.substr(begin + 1, end - begin - 1);
  text = text.substr(end + 1);
  return quoted;
}

/// The second of two quoted names begins behind `", ` and a label; where names hold such a text themselves, the first
/// place is taken.
void splitRename(Event& event) {
  for (std::size_t at = event.path.find("\", "); at != std::string_view::npos; at = event.path.find("\", ", at + 1)) {
    const std::size_t open = event.path.find('"', at + 1);
    if (open == std::string_view::npos) return;
    const std::string_view label = event.path.substr(at + 1, open - at - 1);
    if (!label.ends_with(' ') || label.size() > 32) continue;
    event.toPath = event.path.substr(open + 1);
    event.path = event.path.substr(0, at);
    return;
  }
}

/// `file handle: 0x000003e8`: the word behind the mark, up to a comma or a blank.
std::string_view handleIn(std::string_view text) {
  constexpr std::string_view kMark = "handle: ";
  const std::size_t at = text.substr(0, 64).find(kMark);
  if (at == std::string_view::npos) return {};
  const std::string_view handle = text.substr(at + kMark.size());
  return handle.substr(0, handle.find_first_of(", ;"));
}

}  // namespace

bool readSftpRequest(std::string_view text, Event& event) {
  LineFront line(text);
  const auto number = takeRequestNumber(line);
  if (!number) return false;
  const std::string_view name = takeName(line);
  event.kind = EventKind::Request;
  event.request = *number;
  for (const auto& [request, verb] : kRequests)
    if (name == request) event.verb = verb;
  std::string_view rest = line.rest();
  event.text = {};
  switch (event.verb) {
    case Verb::SftpClose:
    case Verb::SftpRead:
    case Verb::SftpWrite:
      event.text = handleIn(rest);
      break;
    case Verb::SftpOpen:
      event.path = takeQuoted(rest);
      // Behind the name nothing is the client's choice but what it wants to do.
      event.action = rest.find("WRITE") != std::string_view::npos ? FileAction::Upload : FileAction::Download;
      break;
    case Verb::SftpRename:
      event.path = takeQuoted(rest);
      splitRename(event);
      break;
    default:
      event.path = takeQuoted(rest);
      break;
  }
  return true;
}

bool readSftpAnswer(std::string_view text, Event& event) {
  LineFront line(text);
  const auto number = takeRequestNumber(line);
  if (!number) return false;
  const std::string_view name = takeName(line);
  event.kind = EventKind::Answer;
  event.request = *number;
  event.reply = sftpReply(name);
  event.text = name == "SSH_FXP_HANDLE" ? handleIn(line.rest()) : std::string_view();
  return true;
}

}  // namespace quorvel
