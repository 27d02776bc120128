// Who tried to log on: one row an address or a user, those who stand out first.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include "report/table.h"
#include "report/thresholds.h"

namespace quorvel {

enum class LoginsBy {
  Address,
  User
};

/// All that is known of one address or one name.
struct LoginRow {
  TextId who = kNoText;
  LogNumber log = 0;  ///< whose encoding its texts have: that of the first attempt
  std::uint32_t attempts = 0;
  std::uint32_t failures = 0;
  std::uint32_t names = 0;             ///< distinct names tried; by user: distinct addresses
  std::array<TextId, 3> firstNames{};  ///< the first of them, kNoText behind the last
  std::uint32_t mostInTenMinutes = 0;  ///< failures
  std::uint32_t mostInTwoMinutes = 0;
  std::uint32_t gotInAfter = 0;  ///< most failures in a row that a log-on followed
  TextId gotInAs = kNoText;      ///< the name of that log-on; by user: its address
  LogTime gotInAt = kNoTime;
  LogTime first = kNoTime;
  LogTime last = kNoTime;
  RowNumber attempt = 0;  ///< the log-on to look at: the one that got in, else the first
  /// Stands out: got in after many failures (2), many failures in a short time (1), neither (0).
  std::uint8_t rank = 0;
};

/// In the order of rank, then of failures.
[[nodiscard]] std::vector<LoginRow> logins(const Activity& activity, const std::vector<RowNumber>& logons, LoginsBy by,
                                           const Thresholds& thresholds);
/// Columns: address (or user), stands_out, failures, names, names_tried (addresses), most_in_10m, most_in_2m,
/// got_in_after, got_in_as (got_in_from), attempts, first, last.
[[nodiscard]] std::unique_ptr<Table> loginsTable(const Activity& activity, const std::vector<RowNumber>& logons,
                                                 LoginsBy by, const Thresholds& thresholds);

}  // namespace quorvel
