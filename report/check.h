// What became of every line of the logs, and what their formats cannot tell.
#pragma once

#include <string>
#include <vector>

#include "activity/activity.h"

namespace quorvel {

/// Whole sentences, log by log: how much was understood, what was set aside, foreign or repeated, where the clock went
/// back, what its format cannot tell, damage. UTF-8.
[[nodiscard]] std::vector<std::string> checkSentences(const Activity& activity);

/// Lines set aside of all that belong to a log of ours, in hundredths of a percent.
[[nodiscard]] std::int64_t setAsidePercent(const Ledger& ledger);

}  // namespace quorvel
