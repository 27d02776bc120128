// How the values of a table are written: in files, and for people.
#pragma once

#include <string>
#include <string_view>

#include "report/table.h"

namespace quorvel {

/// The whole instant, `2005-06-06T08:03:11`; empty for kNoTime.
[[nodiscard]] std::string timeText(LogTime time);
/// `2005-06-06`; empty for kNoTime.
[[nodiscard]] std::string dayText(LogTime time);

/// As files hold it: plain numbers, true and false, `99.98` for percents, empty for null.
void appendPlain(std::string& text, const Cell& cell);

/// As people read it: `2005-06-06 08:03:11`, `1,024`, `5.7 MB`, `1:02:03`, `99.98 %`, `yes`; empty for null. Texts are
/// given as they are: what shows them keeps control characters out.
[[nodiscard]] std::string readableText(const Cell& cell);
/// `5.7 MB`: units of 1,000, one decimal from a thousand bytes on.
[[nodiscard]] std::string readableBytes(std::int64_t bytes);
/// `12,345`.
[[nodiscard]] std::string readableCount(std::int64_t count);
/// `1 line`, `12,345 lines`.
[[nodiscard]] std::string countOf(std::uint64_t count, std::string_view thing);
/// `0:00:41`, `2 d 03:04:05`.
[[nodiscard]] std::string readableSeconds(std::int64_t seconds);

/// Hundredths of a percent that part is of whole, 0 to 10,000; 10,000 of nothing. All but all is not all.
[[nodiscard]] std::int64_t percentOf(std::uint64_t part, std::uint64_t whole);

/// text without characters that a terminal or a spreadsheet would obey: control characters (C0, DEL and C1), line and
/// paragraph separators and marks that turn the direction of writing become U+FFFD. text is valid UTF-8.
[[nodiscard]] std::string withoutControls(std::string_view text);

}  // namespace quorvel
