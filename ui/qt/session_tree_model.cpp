#include "ui/qt/session_tree_model.h"

#include "log/text.h"
#include "ui/qt/text.h"

namespace quorvel {

SessionTreeModel::SessionTreeModel(const SessionTree& tree, QObject* parent)
    : QAbstractItemModel(parent), m_tree(tree) {}

void SessionTreeModel::beginChange() {
  if (m_isChanging) return;
  beginResetModel();
  m_isChanging = true;
}

void SessionTreeModel::endChange() {
  if (!m_isChanging) return;
  m_isChanging = false;
  endResetModel();
}

void SessionTreeModel::noteChecksChanged() {
  const int rows = rowCount();
  if (rows > 0) emit dataChanged(index(0, 0), index(rows - 1, 0), {Qt::CheckStateRole});
}

void SessionTreeModel::showCheckBoxes(bool visible) {
  if (visible == m_showsCheckBoxes) return;
  m_showsCheckBoxes = visible;
  noteChecksChanged();
}

std::int32_t SessionTreeModel::nodeOf(const QModelIndex& index) {
  return index.isValid() ? static_cast<std::int32_t>(index.internalId()) : 0;
}

QModelIndex SessionTreeModel::indexOf(std::int32_t node) const {
  if (!isReadable() || node < 1 || node > m_tree.nodeCount()) return {};
  return createIndex(m_tree.rowOf(node), 0, static_cast<quintptr>(node));
}

std::int32_t SessionTreeModel::findText(const QString& prefix, std::int32_t from, bool includesFrom,
                                        const std::unordered_set<std::int32_t>& openParents) const {
  if (rowCount() == 0) return 0;
  const std::string wanted = toBytes(prefix);
  std::int32_t current = from > 0 ? from : m_tree.parentNode(0);
  // In a closed branch nothing is on the screen, and the way round the screen does not lead back to it.
  const std::int32_t branch = m_tree.parentOf(current);
  if (branch != 0 && !openParents.contains(branch)) current = branch;
  const std::int32_t start = from > 0 && !includesFrom ? nodeBelow(current, openParents) : current;
  std::int32_t node = start;
  do {
    if (startsWithFolded(m_tree.text(node), wanted)) return node;
    node = nodeBelow(node, openParents);
  } while (node != start);
  return 0;
}

std::int32_t SessionTreeModel::nodeBelow(std::int32_t node, const std::unordered_set<std::int32_t>& openParents) const {
  if (openParents.contains(node) && m_tree.childCount(node) > 0) return m_tree.childNode(node, 0);
  while (node != 0) {
    const std::int32_t parent = m_tree.parentOf(node);
    const std::int32_t nextRow = m_tree.rowOf(node) + 1;
    if (nextRow < m_tree.childCount(parent)) return m_tree.childNode(parent, nextRow);
    node = parent;
  }
  return m_tree.parentNode(0);
}

QModelIndex SessionTreeModel::index(int row, int column, const QModelIndex& parent) const {
  if (column != 0 || row < 0 || row >= rowCount(parent)) return {};
  return createIndex(row, 0, static_cast<quintptr>(m_tree.childNode(nodeOf(parent), row)));
}

QModelIndex SessionTreeModel::parent(const QModelIndex& child) const {
  if (!child.isValid() || !isReadable()) return {};
  return indexOf(m_tree.parentOf(nodeOf(child)));
}

int SessionTreeModel::rowCount(const QModelIndex& parent) const {
  if (!isReadable() || parent.column() > 0) return 0;
  return m_tree.childCount(nodeOf(parent));
}

int SessionTreeModel::columnCount(const QModelIndex&) const {
  return 1;
}

bool SessionTreeModel::hasChildren(const QModelIndex& parent) const {
  return rowCount(parent) > 0;
}

QVariant SessionTreeModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || !isReadable()) return {};
  const std::int32_t node = nodeOf(index);
  if (role == Qt::DisplayRole) return toOneLine(toQString(m_tree.text(node)));
  if (role == Qt::CheckStateRole && m_showsCheckBoxes) return m_tree.isChecked(node) ? Qt::Checked : Qt::Unchecked;
  return {};
}

bool SessionTreeModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::CheckStateRole || !m_showsCheckBoxes || !index.isValid() || !isReadable()) return false;
  const bool wanted = value.toInt() == Qt::Checked;
  emit checkRequested(nodeOf(index), wanted);
  emit dataChanged(index, index, {Qt::CheckStateRole});
  return m_tree.isChecked(nodeOf(index)) == wanted;
}

Qt::ItemFlags SessionTreeModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  if (m_showsCheckBoxes) flags |= Qt::ItemIsUserCheckable;
  return flags;
}

}  // namespace quorvel
