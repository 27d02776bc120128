// TreeView1: the session tree on the screen. Arrows move, typing finds a name, Space checks, Enter acts as a click. So
// does a highlight that the keys have moved, once they rest.
#pragma once

#include <QElapsedTimer>
#include <QPersistentModelIndex>
#include <QTimer>
#include <QTreeView>
#include <chrono>
#include <cstdint>
#include <unordered_set>

namespace quorvel {

class SessionTreeModel;

class SessionTreeBox : public QTreeView {
  Q_OBJECT

 public:
  /// How long the keys must rest.
  static constexpr std::chrono::milliseconds kRest{150};

  explicit SessionTreeBox(QWidget* parent = nullptr);

  /// Draws model, which must outlive its use; nullptr for none.
  void showModel(SessionTreeModel* model);
  void showCheckBoxes(bool visible);
  void noteChecksChanged();

  /// While they wait, clicks and moves of the highlight are not told; the node highlighted at the end is.
  void letClicksWait(bool wait);

  void keyboardSearch(const QString& search) override;

 signals:
  void nodeClicked(std::int32_t node);
  /// The right mouse button, after the node under it was clicked, or the keyboard's menu key; position is on the
  /// screen.
  void menuRequested(const QPoint& position);

 protected:
  bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  void onClicked(const QModelIndex& index);
  void clickHighlighted();

  SessionTreeModel* m_model = nullptr;
  std::unordered_set<std::int32_t> m_openParents;
  bool m_clickChangedCheck = false;     // the click that is being handled hit a check box
  QPersistentModelIndex m_beforePress;  // what was highlighted then
  QTimer m_rest;                        // runs from the last move of the highlight that was not told
  bool m_clicksWait = false;
  QString m_typed;  // what was typed without a longer pause
  QElapsedTimer m_sinceTyped;
};

}  // namespace quorvel
