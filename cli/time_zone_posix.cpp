#include <cstdlib>
#include <ctime>
#include <filesystem>

#include "cli/time_zone.h"

namespace quorvel {
namespace {

bool isKnown(const std::string& name) {
  if (name == "UTC") return true;
  if (name.front() == '/' || name.find("..") != std::string::npos || name.find('\0') != std::string::npos) return false;
  std::error_code error;
  return std::filesystem::is_regular_file(std::filesystem::path("/usr/share/zoneinfo") / name, error);
}

}  // namespace

std::optional<TimeZone> TimeZone::named(const std::string& name) {
  if (name.empty()) return TimeZone();
  if (!isKnown(name)) return std::nullopt;
  ::setenv("TZ", name == "UTC" ? "UTC0" : (":" + name).c_str(), 1);
  ::tzset();
  return TimeZone();
}

std::int64_t TimeZone::toUtc(LogTime time) const {
  const std::time_t plain = time;
  std::tm clock{};
  ::gmtime_r(&plain, &clock);
  clock.tm_isdst = -1;
  return std::mktime(&clock);
}

}  // namespace quorvel
