// What the tests of the window share.
#pragma once

#include <gtest/gtest.h>

#include <QMessageBox>

#include "tests/qt/row_texts.h"
#include "tests/support/program_window.h"
#include "ui/qt/main_panes.h"
#include "ui/qt/plain_text_box.h"
#include "ui/qt/session_tree_box.h"
#include "ui/qt/session_tree_model.h"

namespace quorvel::test {

/// The log of one session, from the connect line to the closing line.
inline std::string sessionLog(int number, const std::string& ip, const std::string& name,
                              const std::string& otherLines = {}) {
  char id[16];
  std::snprintf(id, sizeof id, "(%06d)", number);
  const auto line = [&id](const std::string& text) { return "Mon 05Mar01 10:15:02 - " + (id + (" " + text)) + "\r\n"; };
  return line("Connected to " + ip + " (Local address 192.168.0.1)") + line("USER " + name) +
         line("User " + name + " logged in") + (otherLines.empty() ? "" : line(otherLines)) +
         line("Closing connection");
}

class WindowTest : public testing::Test, protected ProgramWindow {
 protected:
  [[nodiscard]] bool canChoose(MenuItem item) { return window.menus().action(item).isEnabled(); }

  void openAndFind(std::string_view log) {
    open(folder.write("ftp.log", log));
    choose(MenuItem::mnuFindUsers);
    runEvents();
  }

  /// A row of the tree as the user sees it; child -1: the parent's own row.
  [[nodiscard]] QModelIndex row(int parent, int child = -1) {
    const QAbstractItemModel* const model = window.panes().tree().model();
    const QModelIndex top = model->index(parent, 0);
    return child < 0 ? top : model->index(child, 0, top);
  }
  void click(const QModelIndex& index);
  /// A part of the window by its name.
  template <typename T>
  [[nodiscard]] T& part(const char* name) {
    return *window.findChild<T*>(QString::fromLatin1(name));
  }

  [[nodiscard]] std::string status(StatusPanel panel = StatusPanel::Text) {
    return window.statusText(panel).toStdString();
  }
  [[nodiscard]] std::string treeHeader();
  [[nodiscard]] QStringList treeLines() { return rowTexts(*window.panes().tree().model()); }
};

}  // namespace quorvel::test
