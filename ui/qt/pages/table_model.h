// Rows of a report for a view of Qt.
#pragma once

#include <QAbstractTableModel>
#include <memory>
#include <optional>
#include <vector>

#include "report/scope.h"
#include "report/table.h"

namespace quorvel {

/// A table, and the order its rows are shown in. Replaced as a whole; sorting is asked of whoever makes the tables.
class TableModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  static constexpr int kSortRole = Qt::UserRole;  ///< number or text as it compares

  using QAbstractTableModel::QAbstractTableModel;

  /// table may be null: no rows then, and the columns stay. An empty order stands for the table's own.
  void show(std::shared_ptr<const Table> table, std::vector<RowNumber> order);
  [[nodiscard]] const Table* table() const { return m_table.get(); }
  [[nodiscard]] const std::shared_ptr<const Table>& sharedTable() const { return m_table; }
  /// The table's row that stands in a row of the view.
  [[nodiscard]] std::size_t tableRow(int row) const;
  [[nodiscard]] const std::vector<Column>& columns() const { return m_columns; }
  /// Number of the column of that name; -1: none.
  [[nodiscard]] int columnNamed(std::string_view name) const;
  [[nodiscard]] RowSource source(int row) const;
  /// All rows in the order shown.
  [[nodiscard]] std::vector<RowNumber> shownRows() const;
  /// What narrows the scope to the value of a cell; empty where nothing does.
  [[nodiscard]] std::optional<ScopeWord> word(const QModelIndex& index) const;
  /// The time of a cell; kNoTime where it has none.
  [[nodiscard]] LogTime time(const QModelIndex& index) const;
  /// The first row of the same source, or without one with the same first value; -1: none.
  [[nodiscard]] int rowLike(RowSource source, const QString& firstValue) const;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  void sort(int column, Qt::SortOrder order) override;

 signals:
  void sortAsked(int column, Qt::SortOrder order);

 private:
  [[nodiscard]] Cell cell(const QModelIndex& index) const;
  [[nodiscard]] bool stands(const QModelIndex& index) const;
  /// Needs the reader's eye: refused, cut off, failed.
  [[nodiscard]] bool isMarked(const QModelIndex& index) const;

  std::shared_ptr<const Table> m_table;
  std::vector<Column> m_columns;  // of the last table
  std::vector<RowNumber> m_order;
  std::size_t m_rows = 0;
};

/// Rows of a table as text with tabs between the values, a head line first, the columns as given.
[[nodiscard]] QString tabSeparated(const TableModel& model, const std::vector<int>& rows,
                                   const std::vector<int>& columns);

}  // namespace quorvel
