#include "grammar/serv_u_words.h"

#include <chrono>
#include <optional>

#include "grammar/civil_time.h"
#include "grammar/line_front.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::size_t kStampLength = 20;
/// Longer numbers are no session's.
constexpr std::size_t kMostKeyDigits = 20;

int twoDigits(const char* at) {
  return isDigit(at[0]) && isDigit(at[1]) ? (at[0] - '0') * 10 + (at[1] - '0') : -1;
}

/// `Mon 06Jun05 08:03:11`; the weekday is not looked at. Years 70 to 99 are those of the last century.
LogTime stampTime(std::string_view stamp) {
  if (stamp[3] != ' ' || stamp[11] != ' ' || stamp[14] != ':' || stamp[17] != ':') return kNoTime;
  const char* const at = stamp.data();
  const int day = at[4] == ' ' && isDigit(at[5]) ? at[5] - '0' : twoDigits(at + 4);
  const int year = twoDigits(at + 9);
  return civilTime(year < 0 ? year : year + (year < 70 ? 2000 : 1900), monthNumber(stamp.substr(6, 3)), day,
                   twoDigits(at + 12), twoDigits(at + 15), twoDigits(at + 18));
}

/// `"alice"` without its quotes.
std::string_view unquoted(std::string_view text) {
  const bool isQuoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  return isQuoted ? text.substr(1, text.size() - 2) : text;
}

bool isGroupMark(char c) {
  return c == ',' || c == '.' || c == '\'' || c == ' ' || c == '\xA0' || c == '\xC2';
}

/// Takes `1,234,567` off the end of text: digits, with marks between groups of them. Empty where there is no number.
std::optional<std::int64_t> takeNumberAtEnd(std::string_view& text) {
  std::size_t begin = text.size();
  while (begin > 0 && (isDigit(text[begin - 1]) || isGroupMark(text[begin - 1])))
    --begin;
  while (begin < text.size() && isGroupMark(text[begin]))
    ++begin;
  if (begin == text.size() || !isDigit(text.back())) return std::nullopt;
  std::int64_t number = 0;
  for (const char c : text.substr(begin)) {
    if (!isDigit(c)) continue;
    if (number > INT64_MAX / 10 - 1) return std::nullopt;
    number = number * 10 + (c - '0');
  }
  text = text.substr(0, begin);
  return number;
}

/// Takes ` (94.0 Kb/sec - 48128 bytes)` off the end of text, whatever the unit. Empty where there is none.
std::optional<std::int64_t> takeRateAndSize(std::string_view& text) {
  std::string_view rest = text;
  if (!rest.ends_with(" bytes)")) return std::nullopt;
  rest.remove_suffix(7);
  const auto bytes = takeNumberAtEnd(rest);
  if (!bytes || !rest.ends_with("- ")) return std::nullopt;
  const std::size_t open = rest.rfind(" (");
  if (open == std::string_view::npos || !containsFolded(rest.substr(open), "b/s")) return std::nullopt;
  text = rest.substr(0, open);
  return bytes;
}

bool takeAtEnd(std::string_view& text, std::string_view end) {
  if (!text.ends_with(end)) return false;
  text.remove_suffix(end.size());
  return true;
}

/// What stands behind `Sent file `, `Error receiving file ` and the like, read from its end.
bool readFile(std::string_view rest, FileAction action, Outcome outcome, Event& event) {
  const auto bytes = takeRateAndSize(rest);
  const bool isAborted = outcome == Outcome::Failed && takeAtEnd(rest, ", aborted");
  if (outcome == Outcome::Ok) (void)takeAtEnd(rest, " successfully");
  rest = unquoted(rest);
  if (rest.empty()) return false;
  event.kind = EventKind::Transfer;
  event.action = action;
  event.outcome = outcome;
  event.isAborted = isAborted;
  event.bytes = bytes.value_or(-1);
  event.path = rest;
  return true;
}

bool readConnected(std::string_view rest, Event& event) {
  LineFront line(rest);
  const std::string_view address = line.takeWord();
  if (!isAddress(address)) return false;
  event.kind = EventKind::Connect;
  event.address = address;
  return true;
}

/// `alice logged in`, `"alice" logged out`
bool readLogon(std::string_view rest, Event& event) {
  const bool isIn = takeAtEnd(rest, " logged in");
  if (!isIn && !takeAtEnd(rest, " logged out")) return false;
  const std::string_view user = unquoted(rest);
  if (user.empty()) return false;
  event.kind = isIn ? EventKind::LoggedOn : EventKind::LoggedOut;
  event.user = user;
  return true;
}

/// `Closing connection for user ALICE (00:00:41 connected)`, `Closing connection`
bool readClosing(std::string_view rest, Event& event) {
  LineFront line(rest);
  if (!rest.empty() && rest.front() != ' ') return false;
  event.kind = EventKind::Close;
  if (!line.take(" for user ")) return true;
  std::string_view user = line.rest();
  if (user.ends_with(" connected)")) user = user.substr(0, user.rfind(" ("));
  event.user = user;
  return true;
}

bool readSentence(std::string_view text, Event& event) {
  LineFront line(text);
  switch (text.empty() ? '\0' : text.front()) {
    case 'A':
    case 'a':
      return text.size() == 19 && startsWithFolded(text, "anonymous ") && readLogon(text, event);
    case 'C':
      if (line.take("Connected to ")) return readConnected(line.rest(), event);
      if (line.take("Closing connection")) return readClosing(line.rest(), event);
      if (text != "Closed session") return false;
      event.kind = EventKind::Close;
      return true;
    case 'E':
      if (line.take("Error sending file ")) return readFile(line.rest(), FileAction::Download, Outcome::Failed, event);
      return line.take("Error receiving file ") && readFile(line.rest(), FileAction::Upload, Outcome::Failed, event);
    case 'R':
      return line.take("Received file ") && readFile(line.rest(), FileAction::Upload, Outcome::Ok, event);
    case 'S':
      return line.take("Sent file ") && readFile(line.rest(), FileAction::Download, Outcome::Ok, event);
    case 'U':
      return line.take("User ") && readLogon(line.rest(), event);
    default:
      return false;
  }
}

}  // namespace

bool readServUFront(std::string_view line, std::size_t bracketDigits, ServUFront& front) {
  front = {};
  if (bracketDigits > 0) {
    if (line.size() < bracketDigits + 3 || line[0] != '[' || line[bracketDigits + 1] != ']' ||
        line[bracketDigits + 2] != ' ')
      return false;
    front.bracket = bracketDigits == 1 && isDigit(line[1]) ? line[1] - '0' : twoDigits(line.data() + 1);
    if (front.bracket < 0) return false;
    line.remove_prefix(bracketDigits + 3);
  }
  if (line.size() < kStampLength + 3 || line.substr(kStampLength, 3) != " - ") return false;
  front.time = stampTime(line);
  if (front.time == kNoTime) return false;
  front.text = line.substr(kStampLength + 3);
  if (front.text.empty() || front.text.front() != '(') return true;
  LineFront number(front.text.substr(1));
  const std::string_view digits = number.takeDigits();
  if (digits.empty() || digits.size() > kMostKeyDigits || !number.take(")")) return true;
  if (!number.isEmpty() && !number.take(" ")) return true;
  front.key = digits;
  front.text = number.rest();
  return true;
}

std::string servUStamp(LogTime time) {
  constexpr std::string_view kWeekdays = "SunMonTueWedThuFriSat";
  constexpr std::string_view kMonths = "JanFebMarAprMayJunJulAugSepOctNovDec";
  if (time == kNoTime) return {};
  const std::chrono::sys_seconds moment{std::chrono::seconds{time}};
  const auto day = std::chrono::floor<std::chrono::days>(moment);
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss clock{moment - day};
  const auto twoDigits = [](auto number) { return std::to_string(100 + static_cast<int>(number) % 100).substr(1); };
  std::string stamp(kWeekdays.substr(3 * std::chrono::weekday{day}.c_encoding(), 3));
  stamp.append(" ").append(twoDigits(static_cast<unsigned>(date.day())));
  stamp.append(kMonths.substr(3 * (static_cast<unsigned>(date.month()) - 1), 3));
  stamp.append(twoDigits(static_cast<int>(date.year()))).append(" ");
  stamp.append(twoDigits(clock.hours().count())).append(":");
  stamp.append(twoDigits(clock.minutes().count())).append(":");
  return stamp.append(twoDigits(clock.seconds().count()));
}

bool readServUSentence(std::string_view text, Event& event) {
  const bool isSentence = readSentence(text, event);
  if (isSentence) event.text = text;
  return isSentence;
}

bool isServUListening(std::string_view text) {
  constexpr std::string_view kMark = "istening on port ";
  // At most two words stand in front: "HTTP server listening on port number 43958".
  const std::size_t at = text.substr(0, 64).find(kMark);
  return at != std::string_view::npos && at + kMark.size() < text.size();
}

}  // namespace quorvel
