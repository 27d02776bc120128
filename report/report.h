// A whole answer for people: a heading, sentences, tables. What the shell prints and an HTML file shows.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "report/table.h"

namespace quorvel {

/// How a table is best shown. Every form can be shown as a plain table too.
enum class PartForm {
  Rows,
  Record,      ///< one row, its values below each other
  Bars,        ///< the first column names a bar, the Bytes columns are its parts
  WeekByHour,  ///< seven rows, Monday first; the columns behind the first are the hours
};

struct ReportPart {
  std::string title;  ///< empty: the report's
  std::unique_ptr<Table> table;
  PartForm form = PartForm::Rows;
  std::string whenEmpty;  ///< the sentence in place of a table without rows
};

/// Texts are UTF-8.
struct Report {
  std::string title;
  std::vector<std::string> sentences;
  std::vector<ReportPart> parts;  ///< the first one is what CSV and JSON lines hold
};

}  // namespace quorvel
