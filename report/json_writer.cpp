#include "report/json_writer.h"

#include <vector>

#include "report/cell_text.h"

namespace quorvel {
namespace {

bool isPlain(unsigned char byte) {
  return byte >= 0x20 && byte != '"' && byte != '\\' && byte != 0x7F;
}

void appendEscaped(std::string& record, char byte) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  switch (byte) {
    case '"':
    case '\\':
      record.append("\\") += byte;
      return;
    case '\n':
      record.append("\\n");
      return;
    case '\r':
      record.append("\\r");
      return;
    case '\t':
      record.append("\\t");
      return;
    default:
      record.append("\\u00");
      record += kDigits[static_cast<unsigned char>(byte) >> 4];
      record += kDigits[byte & 0xF];
  }
}

void appendValue(std::string& record, const Cell& cell) {
  switch (cell.kind) {
    case CellKind::Null:
      record.append("null");
      return;
    case CellKind::Text:
    case CellKind::Name:
      return appendJsonText(record, cell.text);
    case CellKind::Time:
      record += '"';
      appendPlain(record, cell);
      record += '"';
      return;
    default:
      return appendPlain(record, cell);
  }
}

}  // namespace

void appendJsonText(std::string& record, std::string_view text) {
  record += '"';
  while (!text.empty()) {
    std::size_t length = 0;
    while (length < text.size() && isPlain(static_cast<unsigned char>(text[length])))
      ++length;
    record.append(text.substr(0, length));
    if (length == text.size()) break;
    appendEscaped(record, text[length]);
    text.remove_prefix(length + 1);
  }
  record += '"';
}

Status writeJsonLines(const Table& table, Output& output) {
  std::vector<std::string> fronts;  // {"first": and ,"second":
  for (const Column& column : table.columns()) {
    std::string& front = fronts.emplace_back(fronts.empty() ? "{" : ",");
    appendJsonText(front, column.name);
    front += ':';
  }
  const std::size_t rows = table.rowCount() - table.totalRows();
  for (std::size_t row = 0; row < rows; ++row) {
    std::string& record = output.record();
    for (std::size_t column = 0; column < fronts.size(); ++column) {
      record.append(fronts[column]);
      appendValue(record, table.cell(row, column));
    }
    record.append("}\n");
    if (Status written = output.endRecord(); !written.isOk()) return written;
  }
  return output.endRecord();
}

}  // namespace quorvel
