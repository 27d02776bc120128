#include "ui/qt/pages/table_model.h"

#include <QApplication>
#include <QStyle>
#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <utility>

#include "ui/qt/pages/shown_text.h"

namespace quorvel {
namespace {

QString titleOf(std::string_view title) {
  return QString::fromUtf8(title.data(), static_cast<qsizetype>(title.size()));
}

QVariant sortValue(const Cell& cell) {
  if (cell.kind == CellKind::Null) return {};
  if (cell.kind == CellKind::Text || cell.kind == CellKind::Name) return plainLine(cell.text);
  return static_cast<qlonglong>(cell.number);
}

std::optional<ScopeWord::Field> fieldOf(std::string_view column) {
  using Field = ScopeWord::Field;
  static constexpr std::array<std::pair<std::string_view, Field>, 6> kFields{{{"user", Field::User},
                                                                              {"address", Field::Address},
                                                                              {"path", Field::Path},
                                                                              {"to_path", Field::Path},
                                                                              {"folder", Field::Path},
                                                                              {"outcome", Field::Outcome}}};
  for (const auto& [name, field] : kFields)
    if (name == column) return field;
  return std::nullopt;
}

}  // namespace

void TableModel::show(std::shared_ptr<const Table> table, std::vector<RowNumber> order) {
  beginResetModel();
  m_table = std::move(table);
  if (m_table) m_columns.assign(m_table->columns().begin(), m_table->columns().end());
  m_order = std::move(order);
  constexpr std::size_t kMost = std::numeric_limits<int>::max();
  m_rows = m_table ? std::min(m_table->rowCount(), kMost) : 0;
  endResetModel();
}

std::size_t TableModel::tableRow(int row) const {
  const auto at = static_cast<std::size_t>(row);
  return m_order.empty() ? at : m_order[at];
}

int TableModel::columnNamed(std::string_view name) const {
  const auto found =
      std::find_if(m_columns.begin(), m_columns.end(), [name](const Column& column) { return column.name == name; });
  return found == m_columns.end() ? -1 : static_cast<int>(found - m_columns.begin());
}

RowSource TableModel::source(int row) const {
  return row >= 0 && row < rowCount() ? m_table->source(tableRow(row)) : RowSource();
}

std::vector<RowNumber> TableModel::shownRows() const {
  if (!m_order.empty()) return m_order;
  std::vector<RowNumber> rows(m_rows);
  std::iota(rows.begin(), rows.end(), RowNumber{0});
  return rows;
}

std::optional<ScopeWord> TableModel::word(const QModelIndex& index) const {
  if (!stands(index)) return std::nullopt;
  const auto field = fieldOf(m_table->columns()[static_cast<std::size_t>(index.column())].name);
  const Cell value = cell(index);
  if (!field || value.text.empty()) return std::nullopt;
  return ScopeWord{*field, std::string(value.text), false};
}

LogTime TableModel::time(const QModelIndex& index) const {
  if (!stands(index)) return kNoTime;
  const Cell value = cell(index);
  return value.kind == CellKind::Time ? static_cast<LogTime>(value.number) : kNoTime;
}

int TableModel::rowLike(RowSource source, const QString& firstValue) const {
  for (int row = 0; row < rowCount(); ++row) {
    const RowSource other = m_table->source(tableRow(row));
    if (other.kind != source.kind || other.row != source.row) continue;
    if (source.kind != RowSource::Kind::None || shownText(m_table->cell(tableRow(row), 0)) == firstValue) return row;
  }
  return -1;
}

int TableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_rows);
}

int TableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

Cell TableModel::cell(const QModelIndex& index) const {
  return m_table->cell(tableRow(index.row()), static_cast<std::size_t>(index.column()));
}

bool TableModel::stands(const QModelIndex& index) const {
  return index.isValid() && index.row() < rowCount() && index.column() < columnCount();
}

bool TableModel::isMarked(const QModelIndex& index) const {
  const Column& column = m_columns[static_cast<std::size_t>(index.column())];
  if (column.name == "stands_out") return !cell(index).text.empty();
  if (column.kind != CellKind::Name) return false;
  static constexpr std::array<std::string_view, 7> kMarked{"failed",  "bad_password", "refused_address", "no_home",
                                                           "refused", "server_start", "aborted"};
  return std::find(kMarked.begin(), kMarked.end(), cell(index).text) != kMarked.end();
}

QVariant TableModel::data(const QModelIndex& index, int role) const {
  if (!stands(index)) return {};
  switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
      return shownText(cell(index));
    case Qt::ToolTipRole:
      return plainToolTip(exactText(cell(index)));
    case Qt::DecorationRole:
      if (isMarked(index)) return QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
      return {};
    case Qt::TextAlignmentRole:
      return static_cast<int>((isNumber(cell(index).kind) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    case kSortRole:
      return sortValue(cell(index));
    default:
      return {};
  }
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
  const Column& column = m_columns[static_cast<std::size_t>(section)];
  if (role == Qt::DisplayRole || role == Qt::ToolTipRole) return titleOf(column.title);
  if (role == Qt::TextAlignmentRole)
    return static_cast<int>((isNumber(column.kind) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
  return {};
}

void TableModel::sort(int column, Qt::SortOrder order) {
  if (column < columnCount()) emit sortAsked(column, order);
}

QString tabSeparated(const TableModel& model, const std::vector<int>& rows, const std::vector<int>& columns) {
  QString text;
  const auto addLine = [&text, &columns](const auto& valueOf) {
    for (const int column : columns)
      text += (column == columns.front() ? QString() : QStringLiteral("\t")) + valueOf(column);
    text += u'\n';
  };
  addLine([&model](int column) { return model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString(); });
  for (const int row : rows)
    addLine([&model, row](int column) { return model.index(row, column).data().toString(); });
  return text;
}

}  // namespace quorvel
