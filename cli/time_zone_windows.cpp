#include <ctime>

#include "cli/time_zone.h"

namespace quorvel {

/// Only the machine's own zone and UTC are known here.
std::optional<TimeZone> TimeZone::named(const std::string& name) {
  if (name == "UTC") {
    ::_putenv_s("TZ", "UTC0");
    ::_tzset();
    return TimeZone();
  }
  return name.empty() ? std::optional<TimeZone>(TimeZone()) : std::nullopt;
}

std::int64_t TimeZone::toUtc(LogTime time) const {
  const std::time_t plain = time;
  std::tm clock{};
  ::gmtime_s(&clock, &plain);
  clock.tm_isdst = -1;
  return std::mktime(&clock);
}

}  // namespace quorvel
