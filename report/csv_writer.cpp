#include "report/csv_writer.h"

#include "report/cell_text.h"

namespace quorvel {
namespace {

bool looksLikeFormula(std::string_view text) {
  return !text.empty() && std::string_view("=+-@\t\r").find(text.front()) != std::string_view::npos;
}

void appendQuoted(std::string& record, std::string_view text) {
  if (text.find_first_of("\",\r\n") == std::string_view::npos) {
    record.append(text);
    return;
  }
  record += '"';
  for (std::size_t quote = text.find('"'); quote != std::string_view::npos; quote = text.find('"')) {
    record.append(text.substr(0, quote + 1)).append("\"");
    text.remove_prefix(quote + 1);
  }
  record.append(text).append("\"");
}

void appendCell(std::string& record, const Cell& cell, const CsvOptions& options) {
  if (cell.kind != CellKind::Text) return appendPlain(record, cell);
  if (options.isRaw || !looksLikeFormula(cell.text)) return appendQuoted(record, cell.text);
  appendQuoted(record, "'" + std::string(cell.text));
}

}  // namespace

Status writeCsv(const Table& table, const CsvOptions& options, Output& output) {
  const std::size_t columns = table.columns().size();
  for (std::size_t column = 0; options.hasHeader && column < columns; ++column)
    output.record().append(column > 0 ? "," : "").append(table.columns()[column].name);
  if (options.hasHeader) output.record() += "\r\n";
  const std::size_t rows = table.rowCount() - table.totalRows();
  for (std::size_t row = 0; row < rows; ++row) {
    std::string& record = output.record();
    for (std::size_t column = 0; column < columns; ++column) {
      if (column > 0) record += ',';
      appendCell(record, table.cell(row, column), options);
    }
    record += "\r\n";
    if (Status written = output.endRecord(); !written.isOk()) return written;
  }
  return output.endRecord();
}

}  // namespace quorvel
