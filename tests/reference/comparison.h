// The engine compared with the literal scans, for made-up logs and for those of the fuzz targets. A comparison returns
// what differs, in words; empty: nothing.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/servu_find_user_info.h"
#include "core/session_lines.h"
#include "tests/reference/session_text.h"

namespace quorvel::test {

/// What the finder reports of a log.
[[nodiscard]] std::vector<UserAct> findSessions(const std::string& log, const FindOptions& options);

/// Hands sessions out one by one; they must outlive it.
[[nodiscard]] SessionSource sourceOf(const std::vector<UserAct>& sessions);

[[nodiscard]] std::string compareFinder(const std::string& log, const FindOptions& options);

/// The lines handed out for the sessions, and what both filters make of them; blockSize is what is read at once.
[[nodiscard]] std::string compareSessionLines(const std::string& log, const std::vector<UserAct>& sessions,
                                              CommandFilterOptions switches, std::size_t blockSize);

/// The transfers of each session and those of the whole log.
[[nodiscard]] std::string compareCounts(const std::string& log, const std::vector<UserAct>& sessions);

}  // namespace quorvel::test
