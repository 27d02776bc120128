#include "report/viewed_table.h"

#include <algorithm>
#include <utility>

#include "report/raw_tables.h"

namespace quorvel {

ViewedTable::ViewedTable(std::shared_ptr<const Table> table, TableView view, std::size_t totalRows)
    : m_table(std::move(table)), m_view(std::move(view)), m_totalRows(totalRows) {
  for (const std::size_t column : m_view.columns)
    m_columns.push_back(m_table->columns()[column]);
}

std::unique_ptr<Table> firstRows(std::unique_ptr<Table> table, std::size_t most) {
  TableView view{allRows(std::min(most, table->rowCount() - table->totalRows())), allColumns(*table)};
  return std::make_unique<ViewedTable>(std::move(table), std::move(view), 0);
}

std::optional<std::size_t> columnNamed(const Table& table, std::string_view name) {
  const auto columns = table.columns();
  const auto named = std::find_if(columns.begin(), columns.end(), [name](const Column& c) { return c.name == name; });
  if (named == columns.end()) return std::nullopt;
  return static_cast<std::size_t>(named - columns.begin());
}

std::vector<std::size_t> allColumns(const Table& table) {
  std::vector<std::size_t> columns(table.columns().size());
  for (std::size_t i = 0; i < columns.size(); ++i)
    columns[i] = i;
  return columns;
}

std::vector<std::size_t> mainColumns(const Table& table) {
  std::vector<std::size_t> columns = allColumns(table);
  std::erase_if(columns, [&table](std::size_t column) { return table.columns()[column].isExtra; });
  return columns;
}

}  // namespace quorvel
