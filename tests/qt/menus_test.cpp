#include "ui/qt/menus.h"

#include <QMenuBar>

#include "tests/support/script.h"

namespace quorvel::test {
namespace {

/// The items of a menu or of the menu bar, each with its keys, and below it what it opens.
std::string itemsOf(const QWidget& menu, const std::string& indent = {}) {
  std::string items;
  for (const QAction* const action : menu.actions()) {
    const std::string text = action->isSeparator() ? "-" : action->text().toStdString();
    const std::string keys = action->shortcut().toString().toStdString();
    items += indent + (action->isVisible() ? text : '(' + text + ')') + (keys.empty() ? "" : "  " + keys) + '\n';
    if (action->menu() != nullptr) items += itemsOf(*action->menu(), indent + "  ");
  }
  return items;
}

TEST(Menus, FollowTheScript) {
  QWidget window;
  QMenuBar bar(&window);
  const Menus menus(bar);
  for (const Script& script : loadScripts(QUORVEL_QT_SCRIPTS))
    play(script, [&](const std::string& line) { return line == "> bar" ? itemsOf(bar) : itemsOf(menus.treePopup()); });
}

}  // namespace
}  // namespace quorvel::test
