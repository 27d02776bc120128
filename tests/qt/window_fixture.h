// The real window with the real commands on a program folder of its own; the file dialogs are answered by the test.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QMessageBox>
#include <QTimer>
#include <functional>

#include "app/main_window.h"
#include "app/settings.h"
#include "tests/support/temp_folder.h"
#include "ui/qt/file_dialogs.h"
#include "ui/qt/main_panes.h"
#include "ui/qt/main_window.h"
#include "ui/qt/menus.h"
#include "ui/qt/plain_text_box.h"
#include "ui/qt/session_tree_box.h"
#include "ui/qt/session_tree_model.h"

namespace quorvel::test {

class AnsweredFileDialogs : public FileDialogs {
 public:
  /// The file picked next; empty stands for Cancel.
  std::filesystem::path answer;

  FileChoice askOpenFile(QWidget*, const FileRequest& request) override { return choose(request); }
  FileChoice askSaveFile(QWidget*, const FileRequest& request) override { return choose(request); }

 private:
  [[nodiscard]] FileChoice choose(const FileRequest& request) const {
    FileChoice choice;
    choice.filterIndex = request.filterIndex;
    choice.path = answer;
    choice.outcome = answer.empty() ? FileChoice::Outcome::Cancelled : FileChoice::Outcome::Chosen;
    return choice;
  }
};

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

class WindowTest : public testing::Test {
 protected:
  /// The commands run the interface at every step, unless told otherwise.
  explicit WindowTest(Pacer::Clock::duration interval = Pacer::Clock::duration::zero()) : pacer(interval) {
    settings.prepareFile();
    settings.resetOtherVersion();
    window.connectCommands(commands);
    commands.load();
    window.applyStoredPlacement();
    window.show();
    runEvents();
  }
  ~WindowTest() override { window.disconnectCommands(); }

  static void runEvents() { QCoreApplication::processEvents(); }

  void choose(MenuItem item) { window.menus().action(item).trigger(); }
  [[nodiscard]] bool canChoose(MenuItem item) { return window.menus().action(item).isEnabled(); }

  void open(const std::filesystem::path& log) {
    dialogs.answer = log;
    choose(MenuItem::mnuOpenLogFile);
  }
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

  /// Calls act on the next modal dialog that opens.
  template <typename Dialog>
  void onDialog(std::function<void(Dialog&)> act) {
    auto* const timer = new QTimer(&window);
    timer->setInterval(1);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, act] {
      auto* const dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
      if (dialog == nullptr) return;
      timer->stop();
      act(*dialog);  // may run events, which must not delete the timer, and this function with it
      timer->deleteLater();
    });
    timer->start();
  }

  [[nodiscard]] std::string status(StatusPanel panel = StatusPanel::Text) {
    return window.statusText(panel).toStdString();
  }
  [[nodiscard]] std::string treeHeader();
  [[nodiscard]] QStringList treeLines();

  TempFolder folder;
  Settings settings{systemFiles(), folder.path()};
  AnsweredFileDialogs dialogs;
  Pacer pacer;
  MainWindow window{dialogs};
  frmMain commands{systemFiles(), settings, window, pacer, folder.path()};
};

}  // namespace quorvel::test
