// TreeView1: the session tree on the screen. Arrows move, typing finds a name, Space checks, Enter acts as a click.
#pragma once

#include <QElapsedTimer>
#include <QTreeView>
#include <cstdint>
#include <unordered_set>

namespace quorvel {

class SessionTreeModel;

class SessionTreeBox : public QTreeView {
  Q_OBJECT

 public:
  explicit SessionTreeBox(QWidget* parent = nullptr);

  /// Draws model, which must outlive its use; nullptr for none.
  void showModel(SessionTreeModel* model);
  void showCheckBoxes(bool visible);
  void noteChecksChanged();

  void keyboardSearch(const QString& search) override;

 signals:
  void nodeClicked(std::int32_t node);
  /// The right mouse button or the keyboard's menu key; position is on the screen.
  void menuRequested(const QPoint& position);

 protected:
  bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  void onClicked(const QModelIndex& index);

  SessionTreeModel* m_model = nullptr;
  std::unordered_set<std::int32_t> m_openParents;
  bool m_clickChangedCheck = false;  // the click that is being handled hit a check box
  QString m_typed;                   // what was typed without a longer pause
  QElapsedTimer m_sinceTyped;
};

}  // namespace quorvel
