// Sessions of a log in the current shape, as records of the users file. The activity engine finds them.
#pragma once

#include <cstddef>
#include <functional>

#include "activity/activity.h"
#include "classic/find/record_format.h"
#include "classic/find/servu_find_user_info.h"
#include "log/log_file.h"

namespace quorvel {

/// The slots for these records, which have room for every name and address; see FindOptions.
[[nodiscard]] constexpr std::size_t currentSlotSize(const FindOptions& options) {
  return options.trunkLongUsernames ? kLargeSlotSize : kLargestSlotSize;
}

/// What ServuFindUserInfo() does, for a log in the current shape. Records are as encodeRecord() makes them for
/// currentSlotSize(); they are handed out when the log was read, or as far as it was read when keepGoing() stopped it.
[[nodiscard]] Result<FindEnd> findCurrentSessions(const LogFile& log, const FindOptions& options,
                                                  FindObserver& observer);

/// The tables of such a log. isComplete tells whether it was read to its end: keepGoing is asked about every megabyte,
/// with how far the log was read, and false ends the reading.
[[nodiscard]] Result<Activity> readCurrentLog(const LogFile& log, const std::function<bool(LogPosition)>& keepGoing);
/// UserAct::Position of a session in its tables.
[[nodiscard]] LogPosition positionOf(const Activity& activity, const SessionRow& session);

}  // namespace quorvel
