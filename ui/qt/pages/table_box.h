// A table of a page: rows that sort, copy and narrow the scope; a header that offers its columns; why it is empty.
#pragma once

#include <QTableView>
#include <memory>
#include <vector>

#include "report/scope.h"
#include "ui/qt/pages/table_model.h"

class QMenu;
class QSettings;

namespace quorvel {

/// What a table is sorted by; column -1: as the report gives it.
struct SortOrder {
  int column = -1;
  Qt::SortOrder direction = Qt::AscendingOrder;
};

class TableBox : public QTableView {
  Q_OBJECT

 public:
  /// name: of its settings; title: for a screen reader.
  TableBox(const QString& name, const QString& title, QWidget* parent = nullptr);

  [[nodiscard]] TableModel& rows() { return m_model; }
  [[nodiscard]] const TableModel& rows() const { return m_model; }
  [[nodiscard]] const SortOrder& sortOrder() const { return m_sort; }

  /// Shows a table; the current row stays the current one where it is still there.
  void show(std::shared_ptr<const Table> table, std::vector<RowNumber> order);
  /// Stands in the middle while there are no rows.
  void setEmptyText(const QString& text);
  /// What is shown, to export or print it: all rows, the visible columns from left to right.
  [[nodiscard]] TableView shown() const;
  void copySelection();
  /// Makes the row of a source the current one, and brings it into view; false where there is none.
  bool goTo(RowSource source);

  void save(QSettings& settings) const;
  void restore(QSettings& settings);

 signals:
  /// Another row became the current one; -1: none.
  void currentRowChanged(int row);
  void rowActivated(int row);
  void sortAsked();
  void wordAsked(const quorvel::ScopeWord& word);
  /// The day of a time.
  void dayAsked(quorvel::LogTime day);
  void sessionAsked(quorvel::RowSource source);
  void addressAsked(const QString& address);

 protected:
  bool event(QEvent* event) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void fitRowHeight();
  void fitColumns();
  void openHeaderMenu(const QPoint& position);
  void addScopeItems(QMenu& menu, const QModelIndex& index);
  void onSortAsked(int column, Qt::SortOrder direction);
  [[nodiscard]] std::vector<int> visibleColumns() const;

  QString m_name;
  TableModel m_model;
  SortOrder m_sort;
  QString m_emptyText;
  QByteArray m_headerState;                // to be applied when the columns are known
  std::vector<std::string_view> m_fitted;  // names of the columns that were given their widths
  bool m_isReplacing = false;
};

}  // namespace quorvel
