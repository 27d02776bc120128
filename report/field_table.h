// A table whose cells are worked out when they are asked for, from rows of any kind and a list of columns.
#pragma once

#include <span>
#include <string>
#include <utility>
#include <vector>

#include "report/table.h"

namespace quorvel {

/// What a column makes a cell of: the activity, the row's place, and room for one text.
class CellMaker {
 public:
  explicit CellMaker(const Activity& activity) : m_activity(activity) {}
  [[nodiscard]] const Activity& activity() const { return m_activity; }
  [[nodiscard]] RowNumber row() const { return m_row; }

  /// A text of a log; null where there is none.
  [[nodiscard]] Cell text(TextId id, LogNumber log) const;
  [[nodiscard]] Cell logName(LogNumber log) const;
  /// A text of ours, which must outlive the table; null where it is empty. number: its place among others, if any.
  [[nodiscard]] static Cell name(std::string_view text, std::int64_t number = 0);
  /// Texts that are put together, kept until the next one. What is no UTF-8 is replaced.
  [[nodiscard]] Cell keptName(std::string text) const;
  [[nodiscard]] Cell keptText(std::string_view text) const;
  [[nodiscard]] static Cell count(std::uint64_t count) {
    return {CellKind::Count, static_cast<std::int64_t>(count), {}};
  }
  /// Null where it is not known: -1.
  [[nodiscard]] static Cell bytes(std::int64_t bytes) { return known(CellKind::Bytes, bytes, bytes >= 0); }
  [[nodiscard]] static Cell seconds(std::int64_t seconds) { return known(CellKind::Seconds, seconds, seconds >= 0); }
  [[nodiscard]] static Cell time(LogTime time) { return known(CellKind::Time, time, time != kNoTime); }
  [[nodiscard]] static Cell percent(std::int64_t hundredths) { return {CellKind::Percent, hundredths, {}}; }
  [[nodiscard]] static Cell flag(bool isSet) { return {CellKind::Flag, isSet ? 1 : 0, {}}; }

 private:
  template <typename Row>
  friend class FieldTable;

  [[nodiscard]] static Cell known(CellKind kind, std::int64_t number, bool isKnown) {
    return isKnown ? Cell{kind, number, {}} : Cell{};
  }

  Activity m_activity;
  mutable RowNumber m_row = 0;
  mutable std::string m_text;
};

/// A column of rows of one kind.
template <typename Row>
struct Field {
  Column column;
  Cell (*cell)(const CellMaker& make, const Row& row);
};

/// Columns that show a member of the row as it stands.
template <typename Row, auto Member>
constexpr Field<Row> countField(std::string_view name, std::string_view title, bool isExtra = false) {
  return {{name, title, CellKind::Count, isExtra},
          [](const CellMaker&, const Row& row) { return CellMaker::count(row.*Member); }};
}
template <typename Row, auto Member>
constexpr Field<Row> bytesField(std::string_view name, std::string_view title, bool isExtra = false) {
  return {{name, title, CellKind::Bytes, isExtra},
          [](const CellMaker&, const Row& row) { return CellMaker::bytes(row.*Member); }};
}
template <typename Row, auto Member>
constexpr Field<Row> timeField(std::string_view name, std::string_view title, bool isExtra = false) {
  return {{name, title, CellKind::Time, isExtra},
          [](const CellMaker&, const Row& row) { return CellMaker::time(row.*Member); }};
}
/// The row has a member log.
template <typename Row, auto Member>
constexpr Field<Row> textField(std::string_view name, std::string_view title, bool isExtra = false) {
  return {{name, title, CellKind::Text, isExtra},
          [](const CellMaker& make, const Row& row) { return make.text(row.*Member, row.log); }};
}
template <typename Row>
constexpr Field<Row> logField() {
  return {{"log", "Log", CellKind::Text, true},
          [](const CellMaker& make, const Row& row) { return make.logName(row.log); }};
}

/// Where the rows are: worked out and held here, or chosen from a table of the activity.
template <typename Row>
class FieldTable : public Table {
 public:
  using SourceOf = RowSource (*)(const Row& row, RowNumber number);

  /// name and the fields' texts outlive the table. sourceOf may be null: rows come from nowhere in particular.
  FieldTable(std::string_view name, const Activity& activity, std::span<const Field<Row>> fields, SourceOf sourceOf,
             std::vector<Row> rows, std::size_t totalRows = 0)
      : FieldTable(name, activity, fields, sourceOf) {
    m_rows = std::move(rows);
    m_totalRows = totalRows;
  }
  FieldTable(std::string_view name, const Activity& activity, std::span<const Field<Row>> fields, SourceOf sourceOf,
             const Rows<Row>& all, std::vector<RowNumber> chosen)
      : FieldTable(name, activity, fields, sourceOf) {
    m_all = all;
    m_chosen = std::move(chosen);
    m_isChosen = true;
  }

  [[nodiscard]] std::string_view name() const override { return m_name; }
  [[nodiscard]] std::span<const Column> columns() const override { return m_columns; }
  [[nodiscard]] std::size_t rowCount() const override { return m_isChosen ? m_chosen.size() : m_rows.size(); }
  [[nodiscard]] std::size_t totalRows() const override { return m_totalRows; }
  [[nodiscard]] Cell cell(std::size_t row, std::size_t column) const override {
    m_make.m_row = numberOf(row);
    return m_cells[column](m_make, rowAt(row));
  }
  [[nodiscard]] RowSource source(std::size_t row) const override {
    return m_sourceOf == nullptr ? RowSource() : m_sourceOf(rowAt(row), numberOf(row));
  }

 private:
  FieldTable(std::string_view name, const Activity& activity, std::span<const Field<Row>> fields, SourceOf sourceOf)
      : m_name(name), m_make(activity), m_sourceOf(sourceOf) {
    for (const Field<Row>& field : fields) {
      m_columns.push_back(field.column);
      m_cells.push_back(field.cell);
    }
  }

  [[nodiscard]] RowNumber numberOf(std::size_t row) const {
    return m_isChosen ? m_chosen[row] : static_cast<RowNumber>(row);
  }
  [[nodiscard]] const Row& rowAt(std::size_t row) const { return m_isChosen ? m_all[m_chosen[row]] : m_rows[row]; }

  std::string_view m_name;
  CellMaker m_make;
  SourceOf m_sourceOf;
  std::vector<Column> m_columns;
  std::vector<Cell (*)(const CellMaker&, const Row&)> m_cells;
  bool m_isChosen = false;
  std::vector<Row> m_rows;
  Rows<Row> m_all;
  std::vector<RowNumber> m_chosen;
  std::size_t m_totalRows = 0;
};

}  // namespace quorvel
