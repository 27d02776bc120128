// A table with its rows picked and put in order, and its columns chosen.
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "report/table.h"

namespace quorvel {

class ViewedTable final : public Table {
 public:
  /// totalRows of the view's last rows hold sums.
  ViewedTable(std::shared_ptr<const Table> table, TableView view, std::size_t totalRows);
  [[nodiscard]] std::string_view name() const override { return m_table->name(); }
  [[nodiscard]] std::span<const Column> columns() const override { return m_columns; }
  [[nodiscard]] std::size_t rowCount() const override { return m_view.rows.size(); }
  [[nodiscard]] std::size_t totalRows() const override { return m_totalRows; }
  [[nodiscard]] Cell cell(std::size_t row, std::size_t column) const override {
    return m_table->cell(m_view.rows[row], m_view.columns[column]);
  }
  [[nodiscard]] RowSource source(std::size_t row) const override { return m_table->source(m_view.rows[row]); }

 private:
  std::shared_ptr<const Table> m_table;
  TableView m_view;
  std::size_t m_totalRows;
  std::vector<Column> m_columns;
};

/// The first rows of a table, without sums.
[[nodiscard]] std::unique_ptr<Table> firstRows(std::unique_ptr<Table> table, std::size_t most);
/// Number of the column of that name.
[[nodiscard]] std::optional<std::size_t> columnNamed(const Table& table, std::string_view name);
/// Numbers of all columns, or of those that people see without asking.
[[nodiscard]] std::vector<std::size_t> allColumns(const Table& table);
[[nodiscard]] std::vector<std::size_t> mainColumns(const Table& table);

}  // namespace quorvel
