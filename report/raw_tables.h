// The tables of what a log tells, by column, as every file of the program holds them. Names and values stand in other
// people's databases, do not change.
#pragma once

#include <memory>
#include <vector>

#include "report/table.h"

namespace quorvel {

/// Number of the tables' layout.
inline constexpr int kTableSchema = 1;

/// One row a session, an attempt to log on, a file action: the rows given, in this order. They are the answers to
/// "which sessions", "which attempts" and "what happened to files" too.
[[nodiscard]] std::unique_ptr<Table> sessionsTable(const Activity& activity, std::vector<RowNumber> rows);
[[nodiscard]] std::unique_ptr<Table> logonsTable(const Activity& activity, std::vector<RowNumber> rows);
[[nodiscard]] std::unique_ptr<Table> actionsTable(const Activity& activity, std::vector<RowNumber> rows);
/// One row a shape of lines set aside, log by log, in the order of their first lines; one for all that did not fit.
[[nodiscard]] std::unique_ptr<Table> setAsideTable(const Activity& activity);
/// The ledger, one row a log.
[[nodiscard]] std::unique_ptr<Table> checkTable(const Activity& activity);

/// 0 to count - 1.
[[nodiscard]] std::vector<RowNumber> allRows(std::size_t count);

}  // namespace quorvel
