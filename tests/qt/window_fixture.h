// What the tests of the window share.
#pragma once

#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>
#include <stdexcept>

#include "tests/support/program_window.h"
#include "tests/support/sample_log.h"
#include "ui/qt/plain_text_box.h"
#include "ui/qt/session_tree_box.h"
#include "ui/qt/session_tree_model.h"
#include "ui/qt/session_tree_page.h"

namespace quorvel::test {

/// The rows of a tree from top to bottom, a blank in front of those that stand below another one, "|" between them.
inline std::string rowTexts(const QAbstractItemModel& model) {
  QStringList texts;
  for (int row = 0; row < model.rowCount(); ++row) {
    const QModelIndex parent = model.index(row, 0);
    texts += parent.data().toString();
    for (int child = 0; child < model.rowCount(parent); ++child)
      texts += u' ' + model.index(child, 0, parent).data().toString();
  }
  return texts.join(u'|').toStdString();
}

/// A part of a window or dialog by its name.
template <typename T>
[[nodiscard]] T& part(const QWidget& whole, const char* name) {
  T* const found = whole.findChild<T*>(QString::fromLatin1(name));
  if (found == nullptr) throw std::runtime_error(name);
  return *found;
}

/// Waits until the keyboard is in the dialog.
inline bool hasKeyboard(const QDialog& dialog) {
  return QTest::qWaitFor([&dialog] { return dialog.isAncestorOf(QApplication::focusWidget()); });
}

class WindowTest : public testing::Test, protected ProgramWindow {
 protected:
  [[nodiscard]] bool canChoose(MenuItem item) { return window.menus().action(item).isEnabled(); }

  void openAndFind(std::string_view log) {
    open(folder.write("ftp.log", log));
    choose(MenuItem::mnuFindUsers);
    runEvents();
  }
  /// Works with the dialog that the item opens, once it has the keyboard.
  void use(MenuItem item, const std::function<void(QDialog&)>& work) {
    bool isOpened = false;
    onDialog<QDialog>([&](QDialog& dialog) {
      isOpened = hasKeyboard(dialog);
      if (isOpened) work(dialog);
      if (dialog.isVisible()) dialog.reject();
    });
    choose(item);
    EXPECT_TRUE(isOpened);
  }

  /// A row of the tree as the user sees it; child -1: the parent's own row.
  [[nodiscard]] QModelIndex row(int parent, int child = -1) {
    const QModelIndex top = tree.model()->index(parent, 0);
    return child < 0 ? top : tree.model()->index(child, 0, top);
  }
  [[nodiscard]] std::string status(StatusPanel panel = StatusPanel::Text) {
    return window.statusText(panel).toStdString();
  }

  SessionTreeBox& tree = window.sessionTreePage().tree();
};

}  // namespace quorvel::test
