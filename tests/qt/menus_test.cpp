#include "ui/qt/menus.h"

#include <gtest/gtest.h>

#include <QMenuBar>

namespace quorvel::test {
namespace {

/// "&Open log file Ctrl+O | - | ..." with "-" for a separator and parentheses around what is not visible.
QString describe(const QMenu& menu) {
  QStringList items;
  for (const QAction* const action : menu.actions()) {
    QString text = action->isSeparator() ? QStringLiteral("-") : action->text();
    if (!action->shortcut().isEmpty()) text += u' ' + action->shortcut().toString();
    if (action->menu() != nullptr) text += u'{' + describe(*action->menu()) + u'}';
    items += action->isVisible() ? text : u'(' + text + u')';
  }
  return items.join(QStringLiteral(" | "));
}

TEST(Menus, StandInTheirOrderWithTheirKeys) {
  QWidget window;
  QMenuBar bar(&window);
  const Menus menus(bar);
  QStringList lines;
  for (const QAction* const action : bar.actions()) {
    const QString title = action->isVisible() ? action->text() : u'(' + action->text() + u')';
    lines += title + QStringLiteral(": ") + describe(*action->menu());
  }
  EXPECT_EQ(
      lines.join(u'\n').toStdString(),
      "&File: &Open log file Ctrl+O | Save short info (all users) | &Save filtered session (filter window) Ctrl+S"
      " | - | Print info and filter window Ctrl+P | - | &Exit\n"
      "(&Edit): Select all | Copy Ctrl+C | Cut Ctrl+X | Paste Ctrl+V\n"
      "&Commands: Find &users in logfile Ctrl+U | &Stop | - | Filter all (to file) | Filter selected sessions (to "
      "file) | FIlter IP (to file) | FIlter user (to file) | &Filter session Ctrl+F | - | Reload TreeView Ctrl+R\n"
      "C&ounters: Count all transfers | Count selected sessions transfers | Count selected IP:s transfers | Count "
      "selected users transfers | Count current sessions transfers\n"
      "&Tools: &Goto position in logfile Ctrl+G | Get &IP/Ping Ctrl+I | - | Uncheck all boxes in TreeView\n"
      "&Preferences: &Options\n"
      "&Help: Command Line Reference | - | - | Quorvel on the web{Visit website (with default browser) | Send "
      "email (with default mailer) | Report a bug (with default mailer)} | (Automatic Update) | - | &About");
  EXPECT_EQ(
      describe(menus.treePopup()).toStdString(),
      "Show username - logontime | Show username - IP | Show IP - username | Show IP - logontime | - | Reload "
      "TreeView | - | Show checkboxes in TreeView | Uncheck all boxes in TreeView | - | Count sessions transfers");
}

}  // namespace
}  // namespace quorvel::test
