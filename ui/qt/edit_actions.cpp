#include "ui/qt/edit_actions.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QPlainTextEdit>

namespace quorvel {
namespace {

using BoxAction = void (QPlainTextEdit::*)();

/// Boxes that cannot be edited ignore cutting and pasting by themselves.
void actOnFocusedBox(BoxAction act) {
  if (auto* const box = qobject_cast<QPlainTextEdit*>(QApplication::focusWidget())) (box->*act)();
}

void copy() {
  const auto* const view = qobject_cast<QAbstractItemView*>(QApplication::focusWidget());
  if (view == nullptr) return actOnFocusedBox(&QPlainTextEdit::copy);
  if (view->currentIndex().isValid()) QApplication::clipboard()->setText(view->currentIndex().data().toString());
}

}  // namespace

void addEditActions(QMenu& menu) {
  const auto add = [&menu](const char* name, const char* caption, QKeySequence keys, auto act) {
    QAction* const action = menu.addAction(QString::fromLatin1(caption));
    action->setObjectName(QString::fromLatin1(name));
    action->setShortcut(keys);
    QObject::connect(action, &QAction::triggered, &menu, act);
  };
  add("mnuSelectAll", "Select all", {}, [] { actOnFocusedBox(&QPlainTextEdit::selectAll); });
  add("mnuCopy", "Copy", Qt::CTRL | Qt::Key_C, &copy);
  add("mnuCut", "Cut", Qt::CTRL | Qt::Key_X, [] { actOnFocusedBox(&QPlainTextEdit::cut); });
  add("mnuPaste", "Paste", Qt::CTRL | Qt::Key_V, [] { actOnFocusedBox(&QPlainTextEdit::paste); });
}

}  // namespace quorvel
