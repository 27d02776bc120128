// Tables as JSON lines: one object a row, its names those of the columns, null where nothing is known.
#pragma once

#include <string>
#include <string_view>

#include "report/output.h"
#include "report/table.h"

namespace quorvel {

/// Times are texts, flags true and false, percents numbers. Sums at the table's end are left out.
Status writeJsonLines(const Table& table, Output& output);

/// text, valid UTF-8, between quotation marks. Control characters are escaped.
void appendJsonText(std::string& record, std::string_view text);

}  // namespace quorvel
