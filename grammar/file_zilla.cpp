// FileZilla Server: version 0.9, whose dates follow the machine's locale, and version 1, whose times are UTC.
#include <array>
#include <tuple>

#include "grammar/all_grammars.h"
#include "grammar/civil_time.h"
#include "grammar/ftp_words.h"

namespace quorvel {
namespace {

/// `6/14/2016 14:07:11 PM`, `21.12.2021 14:07:08`, `2021-12-21 2:09:31`, as it stands there.
struct LocaleDate {
  std::array<int, 3> numbers{};
  int hour = 0;
  int minute = 0;
  int second = 0;
  bool hasYearFirst = false;
  bool hasMeridiem = false;
  char separator = 0;

  [[nodiscard]] LogTime time(bool isDayFirst) const {
    const int year = hasYearFirst ? numbers[0] : numbers[2];
    const int first = hasYearFirst ? numbers[1] : numbers[0];
    const int second_ = hasYearFirst ? numbers[2] : numbers[1];
    const bool isSwapped = isDayFirst && !hasYearFirst;
    return civilTime(year, isSwapped ? second_ : first, isSwapped ? first : second_, hour, minute, second);
  }
};

std::optional<int> takeNumber(LineFront& line, std::size_t mostDigits) {
  const std::string_view digits = line.takeDigits();
  const auto number = wholeNumber(digits);
  if (!number || digits.size() > mostDigits) return std::nullopt;
  return static_cast<int>(*number);
}

std::optional<LocaleDate> takeLocaleDate(LineFront& line) {
  constexpr std::size_t kLongestMeridiem = 16;
  LocaleDate date;
  for (std::size_t i = 0; i < 3; ++i) {
    const auto number = takeNumber(line, 4);
    if (!number) return std::nullopt;
    date.numbers[i] = *number;
    if (i == 2) break;
    const char separator = line.isEmpty() ? '\0' : line.rest().front();
    if (separator != '/' && separator != '.' && separator != '-') return std::nullopt;
    date.separator = separator;
    line.skip(1);
    if (separator == '.') (void)line.take(" ");
  }
  date.hasYearFirst = date.numbers[0] > 31;
  (void)line.take(".");
  if (!line.take(" ")) return std::nullopt;
  const auto hour = takeNumber(line, 2);
  const bool hasMinute = line.take(":") || line.take(".");
  const auto minute = takeNumber(line, 2);
  const bool hasSecond = line.take(":") || line.take(".");
  const auto second = takeNumber(line, 2);
  if (!hour || !hasMinute || !minute || !hasSecond || !second) return std::nullopt;
  std::tie(date.hour, date.minute, date.second) = std::tie(*hour, *minute, *second);
  const auto meridiem = line.takeUntil(" - ");
  if (!meridiem || meridiem->size() > kLongestMeridiem) return std::nullopt;
  date.hasMeridiem = !meridiem->empty();
  const bool isAfternoon = *meridiem == " PM" || *meridiem == " pm" || *meridiem == " p.m.";
  const bool isMorning = *meridiem == " AM" || *meridiem == " am" || *meridiem == " a.m.";
  if (isAfternoon && date.hour < 12) date.hour += 12;
  if (isMorning && date.hour == 12) date.hour = 0;
  return date;
}

/// `(000286) ` and what stands behind it.
std::optional<LocaleDate> takeOldFront(LineFront& line, Event& event) {
  if (!line.take("(")) return std::nullopt;
  const std::string_view number = line.takeDigits();
  if (number.empty() || !line.take(")")) return std::nullopt;
  (void)line.take(" ");
  event.key = number;
  return takeLocaleDate(line);
}

/// Whether dates have the day first: by a number above 12, else by what keeps the clock from going back, else by how
/// such dates are written where they are.
bool isDayFirst(const LogStart& start) {
  std::array<LogTime, 2> last{};
  std::array<int, 2> jumps{};
  std::optional<LocaleDate> first;
  for (const std::string_view line : start.lines) {
    LineFront front(line);
    Event event;
    const auto date = takeOldFront(front, event);
    if (!date || date->hasYearFirst) continue;
    if (date->numbers[0] > 12) return true;
    if (date->numbers[1] > 12) return false;
    if (!first) first = date;
    for (const bool isDay : {false, true}) {
      const LogTime time = date->time(isDay);
      if (time < last[isDay]) ++jumps[isDay];
      last[isDay] = time;
    }
  }
  if (!first || jumps[0] != jumps[1]) return jumps[1] < jumps[0];
  // Both orders may keep the clock going forward; then the shorter period is the likelier one.
  LineFront front(start.lines.front());
  Event event;
  const auto begin = takeOldFront(front, event);
  if (begin && last[0] - begin->time(false) != last[1] - begin->time(true))
    return last[1] - begin->time(true) < last[0] - begin->time(false);
  return first->separator == '.' || !first->hasMeridiem;
}

/// Version 0.9 does not mark whose words a line holds.
EventKind readOldWords(std::string_view text, Event& event) {
  if (text.starts_with("Connected on port ") || text.starts_with("Connected, sending welcome"))
    return EventKind::Connect;
  if (text == "disconnected." || text == "could not send reply, disconnected.") return EventKind::Close;
  if (readFtpReply(text, event)) {
    // Who is logged on stands in the line's front: without a name there, a client wrote this.
    const bool isForged = event.reply == 230 && event.user.empty();
    if (isForged) event.reply = 0;
    return isForged ? EventKind::Known : EventKind::Reply;
  }
  readFtpCommand(text, event);
  if (isFtpCommand(text)) return EventKind::Command;
  event.text = text;
  if (text.starts_with("SSL ") || text.starts_with("TLS ") || text.starts_with("Kicked by ")) return EventKind::Known;
  return EventKind::Unknown;
}

void readOld(std::string_view line, const Dialect& dialect, Event& event) {
  LineFront front(line);
  const auto date = takeOldFront(front, event);
  if (!date) {
    event.key = {};
    return;
  }
  event.time = date->time(dialect.isDayFirst);
  const auto who = front.takeUntil(")> ");
  LineEnd name(who.value_or(std::string_view{}));
  const auto address = name.takeBehind(" (");
  if (event.time == kNoTime || !address || !isAddress(*address)) {
    event.key = {};
    return;
  }
  event.address = *address;
  if (name.rest() != "(not logged in)") event.user = name.rest();
  event.text = front.rest();
  event.kind = readOldWords(front.rest(), event);
}

/// `[FTP Server] Session 2857 ended gracefully.`
EventKind readServer(std::string_view text, Event& event) {
  LineFront line(text);
  if (line.take("Session ")) {
    const std::string_view number = line.takeDigits();
    if (!number.empty() && line.take(" ended")) {
      event.key = number;
      return EventKind::Close;
    }
  }
  return EventKind::Known;
}

constexpr std::string_view kAuthentication = "SSH User Authentication [method=";
constexpr std::string_view kRefused = "User authentication attempt with method '";

/// What a session says behind `>>` (the client's words), `<<` (replies), `==` and `!!` (the server's remarks).
EventKind readSession(std::string_view mark, std::string_view text, Event& event) {
  event.speaker = mark == ">>" ? Speaker::Client : Speaker::Server;
  if (mark == ">>") {
    if (text.starts_with(kAuthentication)) return EventKind::Known;
    readFtpCommand(text, event);
    return EventKind::Command;
  }
  if (mark == "<<") {
    if (!readFtpReply(text, event)) return EventKind::Known;
    if (event.reply != 220) return EventKind::Reply;
    event.reply = 0;
    return EventKind::Connect;
  }
  if (mark == "!!" && text.starts_with(kRefused)) {
    const std::string_view why = text.substr(std::min(text.find(" failed [user="), text.size()));
    LineFront user(why);
    if (!user.take(" failed [user=")) return EventKind::Known;
    event.user = user.takeUntil("] [").value_or(std::string_view{});
    return EventKind::Refused;
  }
  return EventKind::Known;
}

/// `2024-04-17T20:48:58.788Z << [FTP Session 3635 10.0.0.5 alice] 230 Login successful.`
void readNew(std::string_view line, Event& event) {
  LineFront front(line);
  const auto time = takeIsoDate(front);
  if (!time || front.rest().size() < 4 || front.rest()[2] != ' ') return;
  const std::string_view mark = front.rest().substr(0, 2);
  front.skip(3);
  if (!front.take("[")) return;
  const bool isFtp = front.take("FTP ");
  if (!isFtp && !front.take("SSH SFTP ")) {
    event.kind = mark == "==" || mark == "!!" ? EventKind::Known : EventKind::Unknown;
    return;
  }
  event.time = *time;
  if (front.take("Server] ")) {
    event.speaker = Speaker::Server;
    event.kind = readServer(front.rest(), event);
    return;
  }
  if (!front.take("Session ")) return;
  const std::string_view number = front.takeDigits();
  const auto who = front.take(" ") ? front.takeUntil("] ") : std::nullopt;
  if (number.empty() || !who) return;
  LineFront name(*who);
  const std::string_view address = name.takeWord();
  if (!isAddress(address)) return;
  event.key = number;
  event.address = address;
  event.user = name.rest();
  event.text = front.rest();
  event.kind = readSession(mark, front.rest(), event);
}

class FileZilla final : public Grammar {
 public:
  std::string_view name() const override { return "filezilla"; }
  std::string_view title() const override { return "FileZilla Server"; }
  GrammarTraits traits() const override {
    return {.tellsSizes = false,
            .missing =
                "FileZilla Server writes no sizes; version 0.9 does not mark which lines are the client's words, "
                "and writes dates in the machine's own order; version 1 writes times in UTC."};
  }

  int recognise(const LogStart& start, Dialect& dialect) const override {
    dialect.isDayFirst = isDayFirst(start);
    int lines = 0;
    for (const std::string_view line : start.lines) {
      Event event;
      parse(line, dialect, event);
      if (event.kind != EventKind::Unknown || !event.key.empty()) ++lines;
    }
    return lines;
  }

  void parse(std::string_view line, const Dialect& dialect, Event& event) const override {
    if (line.starts_with('(')) return readOld(line, dialect, event);
    if (line.starts_with("<Date/Time>")) {
      event.kind = EventKind::Known;
      return;
    }
    if (line.starts_with("FileZilla Server ")) {
      event.kind = line.find(" started") != std::string_view::npos ? EventKind::ServerStart : EventKind::Known;
      return;
    }
    readNew(line, event);
  }
};

}  // namespace

const Grammar& fileZilla() {
  static const FileZilla grammar;
  return grammar;
}

}  // namespace quorvel
