// The menu bar and the tree's pop-up menu: their items, captions and keys, and which of them can be chosen now.
#pragma once

#include <QAction>
#include <QMenu>
#include <QObject>
#include <array>

#include "app/view.h"
#include "ui/qt/menu_table.h"

class QMenuBar;

namespace quorvel {

class Menus : public QObject {
  Q_OBJECT

 public:
  static constexpr std::size_t kItemCount = static_cast<std::size_t>(MenuItem::mnuPopupCountSessionsTransfers) + 1;

  /// Fills bar; the shortcuts work in the bar's window.
  explicit Menus(QMenuBar& bar);

  [[nodiscard]] QAction& action(MenuItem item) const { return *m_actions[static_cast<std::size_t>(item)]; }
  [[nodiscard]] QMenu& treePopup() const { return *m_treePopup; }

  /// Takes effect at once, or when the running command ends.
  void enable(MenuItem item, bool enabled);
  void check(MenuItem item, bool checked);
  /// While a command runs only Stop and Exit can be chosen, else all but Stop.
  void setCommandRunning(bool running);
  /// While another page than the session tree is shown, what works on the tree cannot be chosen.
  void setTreeShown(bool shown);

 signals:
  /// An item that can be checked keeps its mark: the command sets it.
  void chosen(quorvel::MenuItem item);

 private:
  void fill(QMenu& menu, const MenuPart& part);
  void addLine(QMenu& menu, const MenuLine& line);
  void addEditMenu(QMenuBar& bar);
  void applyEnabled(MenuItem item);

  std::array<QAction*, kItemCount> m_actions{};
  std::array<bool, kItemCount> m_isEnabled{};  // what the commands want, whether one runs or not
  QMenu* m_treePopup;
  bool m_commandRunning = false;
  bool m_isTreeShown = true;
};

}  // namespace quorvel
