#include "ui/qt/pages/table_box.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QSettings>
#include <algorithm>
#include <utility>

#include "ui/qt/pages/shown_text.h"

namespace quorvel {
namespace {

constexpr int kMostCopiedRows = 1'000'000;  // more is an export's

/// Menus take "&" for a key.
QString menuText(const QString& value) {
  constexpr int kLongest = 40;
  QString text = value.size() > kLongest ? value.left(kLongest) + QStringLiteral("...") : value;
  return text.replace(u'&', QStringLiteral("&&"));
}

}  // namespace

TableBox::TableBox(const QString& name, const QString& title, QWidget* parent) : QTableView(parent), m_name(name) {
  setObjectName(name);
  setAccessibleName(title);
  setModel(&m_model);
  setSelectionBehavior(SelectRows);
  setSelectionMode(ExtendedSelection);
  setShowGrid(false);
  setAlternatingRowColors(true);
  setWordWrap(false);
  setTabKeyNavigation(false);
  setHorizontalScrollMode(ScrollPerPixel);
  setEditTriggers(NoEditTriggers);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  fitRowHeight();
  QHeaderView& header = *horizontalHeader();
  header.setSectionsMovable(true);
  header.setHighlightSections(false);
  header.setSortIndicatorShown(true);
  header.setSortIndicatorClearable(true);
  header.setSortIndicator(-1, Qt::AscendingOrder);
  header.setContextMenuPolicy(Qt::CustomContextMenu);
  setSortingEnabled(true);
  connect(&header, &QWidget::customContextMenuRequested, this, &TableBox::openHeaderMenu);
  connect(&m_model, &TableModel::sortAsked, this, &TableBox::onSortAsked);
  connect(this, &QAbstractItemView::activated, this,
          [this](const QModelIndex& index) { emit rowActivated(index.row()); });
}

void TableBox::fitRowHeight() {
  constexpr int kAir = 4;  // pixels
  verticalHeader()->setMinimumSectionSize(1);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kAir);
  const int icon = fontMetrics().ascent();
  setIconSize({icon, icon});
}

void TableBox::changeEvent(QEvent* event) {
  QTableView::changeEvent(event);
  if (event->type() == QEvent::FontChange) fitRowHeight();
}

void TableBox::show(std::shared_ptr<const Table> table, std::vector<RowNumber> order) {
  const QModelIndex current = currentIndex();
  const RowSource source = m_model.source(current.row());
  const QString first = current.isValid() ? m_model.index(current.row(), 0).data().toString() : QString();
  const int top = verticalScrollBar()->value();
  m_isReplacing = true;
  m_model.show(std::move(table), std::move(order));
  std::vector<std::string_view> names;
  for (const Column& column : m_model.columns())
    names.push_back(column.name);
  if (names != m_fitted) fitColumns();
  m_fitted = std::move(names);
  const int row = current.isValid() ? m_model.rowLike(source, first) : -1;
  if (row >= 0) setCurrentIndex(m_model.index(row, std::min(current.column(), m_model.columnCount() - 1)));
  verticalScrollBar()->setValue(top);
  m_isReplacing = false;
  emit currentRowChanged(row);
}

void TableBox::fitColumns() {
  constexpr int kBesideText = 24;  // pixels, for the sort mark
  constexpr int kSizeColumns = 11;
  constexpr int kNameColumns = 15;  // with a mark in front
  constexpr int kTextColumns = 16;
  constexpr int kPathColumns = 36;
  constexpr int kTimeColumns = 18;
  const int letter = fontMetrics().horizontalAdvance(u'0');
  for (int column = 0; column < m_model.columnCount(); ++column) {
    const Column& named = m_model.columns()[static_cast<std::size_t>(column)];
    const QString title = m_model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    int width = horizontalHeader()->fontMetrics().horizontalAdvance(title) + kBesideText;
    if (named.kind == CellKind::Bytes || named.kind == CellKind::Seconds)
      width = std::max(width, letter * kSizeColumns);
    if (named.kind == CellKind::Name) width = std::max(width, letter * kNameColumns);
    if (named.kind == CellKind::Text) width = std::max(width, letter * kTextColumns);
    if (named.kind == CellKind::Time) width = std::max(width, letter * kTimeColumns);
    if (named.name == "path") width = std::max(width, letter * kPathColumns);
    setColumnWidth(column, width);
    setColumnHidden(column, named.isExtra);
  }
  if (!m_headerState.isEmpty()) (void)horizontalHeader()->restoreState(std::exchange(m_headerState, {}));
  const QSignalBlocker quiet(&m_model);
  horizontalHeader()->setSortIndicator(m_sort.column, m_sort.direction);
}

void TableBox::setEmptyText(const QString& text) {
  m_emptyText = text;
  setAccessibleDescription(text);
  viewport()->update();
}

void TableBox::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  if (m_model.rowCount() > 0 || m_emptyText.isEmpty()) return;
  QPainter painter(viewport());
  painter.setPen(palette().color(QPalette::Text));
  constexpr int kMargin = 12;
  const QRect inside = viewport()->rect().adjusted(kMargin, kMargin, -kMargin, -kMargin);
  painter.drawText(inside, Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
}

std::vector<int> TableBox::visibleColumns() const {
  std::vector<int> columns;
  for (int place = 0; place < m_model.columnCount(); ++place) {
    const int column = horizontalHeader()->logicalIndex(place);
    if (!isColumnHidden(column)) columns.push_back(column);
  }
  return columns;
}

TableView TableBox::shown() const {
  TableView view;
  view.rows = m_model.shownRows();
  for (const int column : visibleColumns())
    view.columns.push_back(static_cast<std::size_t>(column));
  return view;
}

void TableBox::copySelection() {
  std::vector<int> rows;
  for (const QItemSelectionRange& range : selectionModel()->selection())
    for (int row = range.top(); row <= range.bottom(); ++row)
      rows.push_back(row);
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  if (rows.size() > kMostCopiedRows) rows.resize(kMostCopiedRows);
  if (!rows.empty()) QApplication::clipboard()->setText(tabSeparated(m_model, rows, visibleColumns()));
}

bool TableBox::goTo(RowSource source) {
  const int row = m_model.rowLike(source, {});
  if (row < 0) return false;
  const std::vector<int> columns = visibleColumns();
  setCurrentIndex(m_model.index(row, columns.empty() ? 0 : columns.front()));
  scrollTo(currentIndex(), PositionAtCenter);
  return true;
}

void TableBox::save(QSettings& settings) const {
  if (m_fitted.empty()) return;
  settings.setValue(m_name + QStringLiteral("/columns"), horizontalHeader()->saveState());
  settings.setValue(m_name + QStringLiteral("/sortColumn"), m_sort.column);
  settings.setValue(m_name + QStringLiteral("/sortDescending"), m_sort.direction == Qt::DescendingOrder);
}

void TableBox::restore(QSettings& settings) {
  m_headerState = settings.value(m_name + QStringLiteral("/columns")).toByteArray();
  m_sort.column = settings.value(m_name + QStringLiteral("/sortColumn"), -1).toInt();
  const bool isDescending = settings.value(m_name + QStringLiteral("/sortDescending")).toBool();
  m_sort.direction = isDescending ? Qt::DescendingOrder : Qt::AscendingOrder;
}

void TableBox::onSortAsked(int column, Qt::SortOrder direction) {
  if (m_isReplacing || (column == m_sort.column && direction == m_sort.direction)) return;
  m_sort = {column, direction};
  emit sortAsked();
}

void TableBox::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTableView::currentChanged(current, previous);
  if (!m_isReplacing && current.row() != previous.row()) emit currentRowChanged(current.row());
}

bool TableBox::event(QEvent* event) {
  // The window has Ctrl+C for the session tree; here it is the table's.
  if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy))
    event->accept();
  return QTableView::event(event);
}

void TableBox::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) return copySelection();
  QTableView::keyPressEvent(event);
}

void TableBox::openHeaderMenu(const QPoint& position) {
  QMenu menu(this);
  for (int column = 0; column < m_model.columnCount(); ++column) {
    QAction* const action =
        menu.addAction(menuText(m_model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString()));
    action->setCheckable(true);
    action->setChecked(!isColumnHidden(column));
    action->setEnabled(isColumnHidden(column) || visibleColumns().size() > 1);
    connect(action, &QAction::toggled, this, [this, column](bool on) {
      setColumnHidden(column, !on);
      if (on && columnWidth(column) == 0) setColumnWidth(column, horizontalHeader()->defaultSectionSize());
    });
  }
  menu.exec(horizontalHeader()->mapToGlobal(position));
}

void TableBox::contextMenuEvent(QContextMenuEvent* event) {
  const bool byKeyboard = event->reason() == QContextMenuEvent::Keyboard;
  const QModelIndex index = byKeyboard ? currentIndex() : indexAt(event->pos());
  QMenu menu(this);
  if (index.isValid()) addScopeItems(menu, index);
  QAction* const copy = menu.addAction(QStringLiteral("&Copy rows"), this, &TableBox::copySelection);
  copy->setEnabled(selectionModel()->hasSelection());
  QAction* const columns = menu.addAction(QStringLiteral("C&olumns..."));
  const QPoint where = byKeyboard ? viewport()->mapToGlobal(visualRect(index).bottomLeft()) : event->globalPos();
  const QAction* const chosen = menu.exec(where);
  if (chosen == columns) openHeaderMenu(horizontalHeader()->mapFromGlobal(where));
}

void TableBox::addScopeItems(QMenu& menu, const QModelIndex& index) {
  const QString value = menuText(index.data().toString());
  if (const auto word = m_model.word(index)) {
    ScopeWord without = *word;
    without.isExcluded = true;
    menu.addAction(QStringLiteral("&Only \"%1\"").arg(value), this, [this, word] { emit wordAsked(*word); });
    menu.addAction(QStringLiteral("&Not \"%1\"").arg(value), this, [this, without] { emit wordAsked(without); });
    if (word->field == ScopeWord::Field::Address)
      menu.addAction(QStringLiteral("&Look up %1").arg(value), this,
                     [this, word] { emit addressAsked(QString::fromStdString(word->text)); });
  }
  if (const LogTime time = m_model.time(index); time != kNoTime)
    menu.addAction(QStringLiteral("Only this &day"), this, [this, time] { emit dayAsked(time); });
  if (const RowSource source = m_model.source(index.row()); source.kind != RowSource::Kind::None)
    menu.addAction(QStringLiteral("Show &session"), this, [this, source] { emit sessionAsked(source); });
  if (!menu.isEmpty()) menu.addSeparator();
}

}  // namespace quorvel
