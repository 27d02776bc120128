// Shows a SessionTree to Qt's views: nothing is copied, texts and check marks are fetched when a row is drawn.
#pragma once

#include <QAbstractItemModel>
#include <cstdint>
#include <unordered_set>

#include "classic/tree/session_tree.h"

namespace quorvel {

/// One column. An index carries its node's number; the invalid index stands for node 0, whose children are the parents.
class SessionTreeModel : public QAbstractItemModel {
  Q_OBJECT

 public:
  /// tree must outlive the model. Whoever changes it calls beginChange() before and endChange() after.
  explicit SessionTreeModel(const SessionTree& tree, QObject* parent = nullptr);

  void beginChange();
  void endChange();
  /// Check marks changed, nodes did not.
  void noteChecksChanged();
  void showCheckBoxes(bool visible);

  /// 0 for an invalid index.
  [[nodiscard]] static std::int32_t nodeOf(const QModelIndex& index);
  /// Invalid for 0 or a number beyond the last node.
  [[nodiscard]] QModelIndex indexOf(std::int32_t node) const;
  /// The first node whose text starts with prefix without regard to case, in the order of the rows on the screen:
  /// children count only below the parents in openParents. The search begins behind the node from (at it when
  /// includesFrom; at the top for 0) and goes round once. 0 for none.
  [[nodiscard]] std::int32_t findText(const QString& prefix, std::int32_t from, bool includesFrom,
                                      const std::unordered_set<std::int32_t>& openParents) const;

  [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] bool hasChildren(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

 signals:
  /// The user wants a node's check mark set or cleared. The tree itself is changed by whoever listens.
  void checkRequested(std::int32_t node, bool checked);

 private:
  /// False between beginChange() and endChange(): the tree must not be looked at, the model is empty.
  [[nodiscard]] bool isReadable() const { return !m_isChanging; }

  /// The node of the row below, the first one below the last.
  [[nodiscard]] std::int32_t nodeBelow(std::int32_t node, const std::unordered_set<std::int32_t>& openParents) const;

  const SessionTree& m_tree;
  bool m_isChanging = false;
  bool m_showsCheckBoxes = false;
};

}  // namespace quorvel
