// Values of tables as a reader wants to see them: numbers with the locale's separators, sizes as 1.2 GB.
#pragma once

#include <QString>
#include <cstdint>
#include <string_view>

#include "report/table.h"

namespace quorvel {

/// UTF-8 of a table as one line of plain text.
[[nodiscard]] QString plainLine(std::string_view utf8);
/// "1.2 GB"
[[nodiscard]] QString shownSize(std::int64_t bytes);
/// "12,345"
[[nodiscard]] QString shownCount(std::int64_t count);
/// "41 s", "12 min 5 s", "3 h 2 min"
[[nodiscard]] QString shownSeconds(std::int64_t seconds);
/// "2005-06-06 08:03:11" on the log's clock; empty for kNoTime.
[[nodiscard]] QString shownTime(LogTime time);
/// "bad password" for bad_password.
[[nodiscard]] QString shownName(std::string_view name);

[[nodiscard]] QString shownText(const Cell& cell);
/// What the cell's text leaves out: the exact bytes, the seconds. Else the text.
[[nodiscard]] QString exactText(const Cell& cell);
/// For a tool tip, which would take a text that looks like markup for markup.
[[nodiscard]] QString plainToolTip(const QString& plain);
/// Numbers stand on the right.
[[nodiscard]] bool isNumber(CellKind kind);

}  // namespace quorvel
