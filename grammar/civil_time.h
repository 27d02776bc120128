// Dates and times of day as logs write them. None looks at a locale or a time zone.
#pragma once

#include <optional>
#include <string_view>

#include "grammar/event.h"
#include "grammar/line_front.h"

namespace quorvel {

/// kNoTime for a date that does not exist, and outside of 1970 to 2105.
[[nodiscard]] LogTime civilTime(int year, int month, int day, int hour, int minute, int second);
/// 1 to 12 for "Jan" to "Dec", 0 for anything else.
[[nodiscard]] int monthNumber(std::string_view name);

/// `Sun Nov 22 01:03:39 2026` and the blank behind it; days below ten begin with a blank or a zero.
[[nodiscard]] std::optional<LogTime> takeUnixDate(LineFront& line);
/// `2026-11-22T01:03:39.123456+01:00` and the blank behind it, also with a blank for the T, a comma for the point and
/// without fraction or zone, which are not looked at: the time is the log's own clock.
[[nodiscard]] std::optional<LogTime> takeIsoDate(LineFront& line);
/// `01:03:39`, 0 to 86,400 (a leap second counts as the next one).
[[nodiscard]] std::optional<int> takeClock(LineFront& line);
/// `2026-11-22`, as the time of its midnight.
[[nodiscard]] std::optional<LogTime> takeIsoDay(LineFront& line);

}  // namespace quorvel
