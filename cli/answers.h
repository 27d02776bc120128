// The answers to the questions that commands ask, as reports.
#pragma once

#include "cli/request.h"
#include "report/report.h"

namespace quorvel {

/// The answer to a question; its first table is what CSV and JSON lines hold. Not for exports and digests.
[[nodiscard]] Report answer(const Request& request, const Activity& activity, const Scope& scope);

/// A log at a glance, its title left to the caller.
[[nodiscard]] std::vector<ReportPart> overviewParts(const Activity& activity, const Selection& selection,
                                                    const Thresholds& thresholds);
/// The rows on which rules hold.
[[nodiscard]] ReportPart alertsPart(const Activity& activity, std::span<const AlertRule> rules,
                                    std::vector<Alert> alerts);
/// "a.log", "a.log and 2 others".
[[nodiscard]] std::string logNames(const Activity& activity);

}  // namespace quorvel
