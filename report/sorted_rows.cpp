#include <algorithm>
#include <numeric>
#include <string>

#include "log/text.h"
#include "report/table.h"

namespace quorvel {
namespace {

bool isText(CellKind kind) {
  return kind == CellKind::Text || kind == CellKind::Name;
}

std::vector<std::int64_t> numbersOf(const Table& table, std::size_t column) {
  std::vector<std::int64_t> numbers(table.rowCount());
  for (std::size_t row = 0; row < numbers.size(); ++row) {
    const Cell cell = table.cell(row, column);
    numbers[row] = cell.kind == CellKind::Null ? INT64_MIN : cell.number;
  }
  return numbers;
}

/// Texts that have a number come by that, in front of their letters: weekdays are in the order of the week.
std::vector<std::string> textsOf(const Table& table, std::size_t column) {
  std::vector<std::string> texts(table.rowCount());
  for (std::size_t row = 0; row < texts.size(); ++row) {
    const Cell cell = table.cell(row, column);
    if (cell.kind != CellKind::Null) texts[row] = static_cast<char>(cell.number) + foldCase(cell.text);
  }
  return texts;
}

template <typename Key>
std::vector<RowNumber> orderOf(const std::vector<Key>& keys, std::size_t totalRows, bool isDescending) {
  std::vector<RowNumber> rows(keys.size());
  std::iota(rows.begin(), rows.end(), RowNumber{0});
  std::stable_sort(
      rows.begin(), rows.end() - static_cast<std::ptrdiff_t>(totalRows),
      [&keys, isDescending](RowNumber a, RowNumber b) { return isDescending ? keys[b] < keys[a] : keys[a] < keys[b]; });
  return rows;
}

}  // namespace

std::vector<RowNumber> sortedRows(const Table& table, std::size_t column, bool isDescending) {
  return isText(table.columns()[column].kind) ? orderOf(textsOf(table, column), table.totalRows(), isDescending)
                                              : orderOf(numbersOf(table, column), table.totalRows(), isDescending);
}

}  // namespace quorvel
