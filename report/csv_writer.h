// Tables as CSV (RFC 4180): UTF-8, a header line with the columns' names, lines that end with CR LF.
#pragma once

#include "report/output.h"
#include "report/table.h"

namespace quorvel {

struct CsvOptions {
  /// Texts are written as they are. Otherwise a ' stands in front of those that a spreadsheet would take for a formula:
  /// they begin with = + - @, a tab or a CR.
  bool isRaw = false;
  bool hasHeader = true;  ///< rows that go on with a file have none
};

/// Sums at the table's end are left out.
Status writeCsv(const Table& table, const CsvOptions& options, Output& output);

}  // namespace quorvel
