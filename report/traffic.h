// Files and bytes that went over, summed by whom, whence, when or where.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "report/table.h"

namespace quorvel {

enum class TrafficKey : std::uint8_t {
  User,
  Address,
  Day,
  Hour,
  Weekday,
  Month,
  Folder
};
/// By TrafficKey: "user", ..., as in --by and in the table's columns.
inline constexpr std::array<std::string_view, 7> kTrafficKeyNames = {"user",    "address", "day",   "hour",
                                                                     "weekday", "month",   "folder"};
[[nodiscard]] std::optional<TrafficKey> trafficKey(std::string_view name);

/// Sums of the transfers that went over, by one key or two different ones. Times come in their order, others with the
/// most bytes first; the last row holds the sums of all. Columns: the keys, files, bytes, downloads, download_bytes,
/// uploads, upload_bytes. A size that no line tells counts as nothing.
[[nodiscard]] std::unique_ptr<Table> trafficTable(const Activity& activity, const std::vector<RowNumber>& actions,
                                                  std::span<const TrafficKey> by);

/// "Mon" for 0 to "Sun" for 6.
[[nodiscard]] std::string_view weekdayName(std::size_t weekday);
/// Bytes by weekday (Monday first) and hour.
using WeekByHour = std::array<std::array<std::int64_t, 24>, 7>;
[[nodiscard]] WeekByHour weekByHour(const Activity& activity, const std::vector<RowNumber>& actions);

}  // namespace quorvel
