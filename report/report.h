// A whole answer for people: headings, sentences, tables. What the shell prints and an HTML file shows.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "report/table.h"

namespace quorvel {

/// How a table is best shown. Every form can be shown as a plain table too.
enum class PartForm {
  Rows,
  Record,    ///< one row, its values below each other
  Bars,      ///< the first column names a bar, download_bytes and upload_bytes are its parts
  WeekGrid,  ///< seven rows, Monday first; the columns behind the first are the hours
};

struct ReportPart {
  std::string title;                   ///< empty: none
  std::vector<std::string> sentences;  ///< those that begin with "! " are urgent
  std::shared_ptr<const Table> table;  ///< null: only sentences
  PartForm form = PartForm::Rows;
  std::string whenEmpty;  ///< the sentence in place of a table without rows
};

/// Texts are UTF-8.
struct Report {
  std::string title;
  std::vector<ReportPart> parts;
};

}  // namespace quorvel
