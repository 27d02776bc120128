#include "ui/qt/session_tree_box.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyledItemDelegate>

#include "ui/qt/session_tree_model.h"

namespace quorvel {
namespace {

/// Rows with some air between them: check boxes would touch each other.
class RowDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    constexpr int kAir = 4;
    return QStyledItemDelegate::sizeHint(option, index) + QSize(0, kAir);
  }
};

}  // namespace

SessionTreeBox::SessionTreeBox(QWidget* parent) : QTreeView(parent) {
  setItemDelegate(new RowDelegate(this));
  setHeaderHidden(true);
  setUniformRowHeights(true);
  setEditTriggers(NoEditTriggers);
  setSelectionMode(SingleSelection);
  setAnimated(false);
  setAcceptDrops(false);
  setTextElideMode(Qt::ElideRight);
  setAccessibleName(QStringLiteral("Sessions"));
  m_rest.setSingleShot(true);
  m_rest.setInterval(kRest);
  connect(&m_rest, &QTimer::timeout, this, &SessionTreeBox::clickHighlighted);
  connect(this, &QAbstractItemView::clicked, this, &SessionTreeBox::onClicked);
  connect(this, &QTreeView::expanded, this,
          [this](const QModelIndex& index) { m_openParents.insert(SessionTreeModel::nodeOf(index)); });
  connect(this, &QTreeView::collapsed, this,
          [this](const QModelIndex& index) { m_openParents.erase(SessionTreeModel::nodeOf(index)); });
}

void SessionTreeBox::showModel(SessionTreeModel* model) {
  m_model = model;
  setModel(model);
  m_openParents.clear();
  m_rest.stop();
  if (model != nullptr) connect(model, &QAbstractItemModel::modelReset, this, [this] { m_openParents.clear(); });
}

void SessionTreeBox::showCheckBoxes(bool visible) {
  if (m_model == nullptr) return;
  m_model->showCheckBoxes(visible);
  scheduleDelayedItemsLayout();  // a check box may make rows higher
}

void SessionTreeBox::noteChecksChanged() {
  if (m_model != nullptr) m_model->noteChecksChanged();
  viewport()->update();  // children are drawn anew without an announcement for each parent
}

void SessionTreeBox::keyboardSearch(const QString& search) {
  if (m_model == nullptr || search.isEmpty()) return;
  const bool continues = m_sinceTyped.isValid() && m_sinceTyped.elapsed() < QApplication::keyboardInputInterval();
  m_sinceTyped.start();
  const bool repeatsFirst = continues && m_typed == search;  // "aa" goes to the next name with "a"
  if (!repeatsFirst) m_typed = continues ? m_typed + search : search;
  const bool staysIfFits = continues && !repeatsFirst;
  const std::int32_t current = SessionTreeModel::nodeOf(currentIndex());
  const std::int32_t node = m_model->findText(m_typed, current, staysIfFits, m_openParents);
  if (node != 0) setCurrentIndex(m_model->indexOf(node));
}

bool SessionTreeBox::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
  m_clickChangedCheck = QTreeView::edit(index, trigger, event);
  return m_clickChangedCheck;
}

void SessionTreeBox::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::RightButton) return;  // contextMenuEvent() follows
  m_clickChangedCheck = false;
  m_beforePress = currentIndex();
  QTreeView::mousePressEvent(event);
}

void SessionTreeBox::mouseReleaseEvent(QMouseEvent* event) {
  QTreeView::mouseReleaseEvent(event);
  if (!m_clickChangedCheck || event->button() != Qt::LeftButton) return;
  // A tick chooses no session: the highlight goes back to the one that is shown.
  if (m_beforePress.isValid()) return setCurrentIndex(m_beforePress);
  clearSelection();
  selectionModel()->clearCurrentIndex();
}

void SessionTreeBox::keyPressEvent(QKeyEvent* event) {
  const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (isEnter) return clickHighlighted();
  const QModelIndex before = currentIndex();
  QTreeView::keyPressEvent(event);
  if (currentIndex() != before) m_rest.start();
}

void SessionTreeBox::contextMenuEvent(QContextMenuEvent* event) {
  QPoint position = event->globalPos();
  if (event->reason() == QContextMenuEvent::Keyboard) {
    const QRect row = visualRect(currentIndex()) & viewport()->rect();
    position = viewport()->mapToGlobal(row.isValid() ? row.bottomLeft() : QPoint());
  } else if (const QModelIndex index = indexAt(event->pos()); index.isValid() && index != currentIndex()) {
    setCurrentIndex(index);
    clickHighlighted();
  }
  emit menuRequested(position);
}

void SessionTreeBox::onClicked(const QModelIndex&) {
  if (!m_clickChangedCheck) clickHighlighted();
}

void SessionTreeBox::clickHighlighted() {
  if (m_clicksWait) return m_rest.start();
  m_rest.stop();
  if (currentIndex().isValid()) emit nodeClicked(SessionTreeModel::nodeOf(currentIndex()));
}

void SessionTreeBox::letClicksWait(bool wait) {
  m_clicksWait = wait;
}

}  // namespace quorvel
