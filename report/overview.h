// A log at a glance.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "report/look_at_first.h"
#include "report/table.h"
#include "report/traffic.h"

namespace quorvel {

/// Of what a scope chooses; lines and the ledger are those of the whole logs.
struct OverviewNumbers {
  LogTime first = kNoTime;
  LogTime last = kNoTime;
  std::uint64_t lines = 0;
  std::int64_t understoodPercent = 10'000;  ///< hundredths, by lines that are not foreign or repeated
  std::uint64_t sessions = 0;
  std::uint64_t users = 0;      ///< distinct names of sessions, without the empty one
  std::uint64_t addresses = 0;  ///< the same
  std::uint64_t logons = 0;     ///< that succeeded
  std::uint64_t refused = 0;
  std::uint64_t downloads = 0;
  std::int64_t downloadBytes = 0;
  std::uint64_t uploads = 0;
  std::int64_t uploadBytes = 0;
  std::uint64_t broken = 0;
  std::uint64_t deletes = 0;
  std::uint64_t renames = 0;
};

struct Overview {
  OverviewNumbers numbers;
  std::vector<Finding> findings;
  std::unique_ptr<Table> summary;       ///< the numbers, one row
  std::unique_ptr<Table> topUsers;      ///< ten of trafficTable by user
  std::unique_ptr<Table> topAddresses;  ///< ten of loginsTable, of those refused, by refusals
  std::unique_ptr<Table> topFolders;    ///< ten of foldersTable
  std::unique_ptr<Table> days;          ///< trafficTable by day
  std::unique_ptr<Table> week;          ///< weekByHour as seven rows of 24 columns
  WeekByHour weekBytes{};
};

[[nodiscard]] Overview overview(const Activity& activity, const Selection& selection, const Thresholds& thresholds);

}  // namespace quorvel
