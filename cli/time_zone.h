// From a log's clock to the world's; one source per system.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "grammar/event.h"

namespace quorvel {

/// One at a time: the system's idea of local time is set for the whole program.
class TimeZone {
 public:
  /// "Europe/Berlin", "UTC"; the machine's where name is empty. Empty where there is none of that name.
  [[nodiscard]] static std::optional<TimeZone> named(const std::string& name);
  /// Seconds since 1970 UTC of a time on the zone's clock. Of a time that the clock showed twice, the first or second;
  /// of one it left out, an hour later.
  [[nodiscard]] std::int64_t toUtc(LogTime time) const;
};

}  // namespace quorvel
