#include "grammar/civil_time.h"

#include <chrono>

namespace quorvel {
namespace {

/// The number at from of exactly count digits, -1 where they are not all digits.
int digitsAt(std::string_view text, std::size_t from, std::size_t count) {
  if (text.size() < from + count) return -1;
  int number = 0;
  for (std::size_t i = from; i < from + count; ++i) {
    if (!isDigit(text[i])) return -1;
    number = number * 10 + (text[i] - '0');
  }
  return number;
}

}  // namespace

LogTime civilTime(int year, int month, int day, int hour, int minute, int second) {
  using namespace std::chrono;
  if (year < 1970 || year > 2105 || month < 1 || day < 1) return kNoTime;
  const year_month_day date{std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
                            std::chrono::day{static_cast<unsigned>(day)}};
  if (!date.ok() || hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 60) return kNoTime;
  const auto days = static_cast<LogTime>(sys_days{date}.time_since_epoch().count());
  return days * 86400 + static_cast<LogTime>(hour * 3600 + minute * 60 + second);
}

int monthNumber(std::string_view name) {
  constexpr std::string_view kMonths = "JanFebMarAprMayJunJulAugSepOctNovDec";
  if (name.size() != 3) return 0;
  const std::size_t at = kMonths.find(name);
  return at == std::string_view::npos || at % 3 != 0 ? 0 : static_cast<int>(at / 3) + 1;
}

std::optional<int> takeClock(LineFront& line) {
  const std::string_view text = line.rest();
  if (text.size() < 8 || text[2] != ':' || text[5] != ':') return std::nullopt;
  const int hour = digitsAt(text, 0, 2);
  const int minute = digitsAt(text, 3, 2);
  const int second = digitsAt(text, 6, 2);
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 60) return std::nullopt;
  line.skip(8);
  return hour * 3600 + minute * 60 + second;
}

std::optional<LogTime> takeIsoDay(LineFront& line) {
  const std::string_view text = line.rest();
  if (text.size() < 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  const LogTime time = civilTime(digitsAt(text, 0, 4), digitsAt(text, 5, 2), digitsAt(text, 8, 2), 0, 0, 0);
  if (time == kNoTime) return std::nullopt;
  line.skip(10);
  return time;
}

std::optional<LogTime> takeUnixDate(LineFront& line) {
  const std::string_view text = line.rest();
  if (text.size() < 25 || text[3] != ' ' || text[7] != ' ' || text[10] != ' ' || text[19] != ' ' || text[24] != ' ')
    return std::nullopt;
  const int day = text[8] == ' ' ? digitsAt(text, 9, 1) : digitsAt(text, 8, 2);
  LineFront rest(text.substr(11));
  const auto clock = takeClock(rest);
  const LogTime midnight = civilTime(digitsAt(text, 20, 4), monthNumber(text.substr(4, 3)), day, 0, 0, 0);
  if (!clock || midnight == kNoTime) return std::nullopt;
  line.skip(25);
  return midnight + static_cast<LogTime>(*clock);
}

std::optional<LogTime> takeIsoDate(LineFront& line) {
  LineFront rest = line;
  const auto day = takeIsoDay(rest);
  if (!day || (!rest.take("T") && !rest.take(" "))) return std::nullopt;
  const auto clock = takeClock(rest);
  if (!clock) return std::nullopt;
  if (rest.take(".") || rest.take(",")) (void)rest.takeDigits();
  if (!rest.take("Z") && (rest.take("+") || rest.take("-"))) {
    (void)rest.takeDigits();
    if (rest.take(":")) (void)rest.takeDigits();
  }
  if (!rest.take(" ")) return std::nullopt;
  line = rest;
  return *day + static_cast<LogTime>(*clock);
}

}  // namespace quorvel
