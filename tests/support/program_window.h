// The real window with the real commands on a program folder of its own, for whatever drives it: tests, pictures,
// measurements.
#pragma once

#include <QApplication>
#include <QTimer>
#include <functional>

#include "app/main_window.h"
#include "app/settings.h"
#include "tests/support/temp_folder.h"
#include "ui/qt/file_dialogs.h"
#include "ui/qt/main_window.h"
#include "ui/qt/menus.h"
#include "ui/qt/pages/pages.h"

namespace quorvel::test {

class AnsweredFileDialogs : public FileDialogs {
 public:
  /// The file picked next; empty stands for Cancel.
  std::filesystem::path answer;

  FileChoice askOpenFile(QWidget*, const FileRequest& request) override { return choose(request); }
  FileChoice askSaveFile(QWidget*, const FileRequest& request) override { return choose(request); }

 private:
  [[nodiscard]] FileChoice choose(const FileRequest& request) const {
    using enum FileChoice::Outcome;
    return {answer.empty() ? Cancelled : Chosen, answer, request.filterIndex, {}, 0};
  }
};

class ProgramWindow {
 public:
  /// interval: how often the commands run the interface; zero stands for at every step.
  explicit ProgramWindow(Pacer::Clock::duration interval = Pacer::Clock::duration::zero()) : pacer(interval) {
    settings.prepareFile();
    settings.resetOtherVersion();
    window.connectCommands(commands);
    commands.load();
    window.applyStoredPlacement();
    window.pages().showPage(PageName::SessionTree);
    window.show();
    runEvents();
  }
  ~ProgramWindow() { window.disconnectCommands(); }

  static void runEvents() { QCoreApplication::processEvents(); }

  void choose(MenuItem item) { window.menus().action(item).trigger(); }
  void open(const std::filesystem::path& log) {
    dialogs.answer = log;
    choose(MenuItem::mnuOpenLogFile);
  }

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

  TempFolder folder;
  Settings settings{systemFiles(), folder.path()};
  AnsweredFileDialogs dialogs;
  Pacer pacer;
  MainWindow window{dialogs};
  frmMain commands{systemFiles(), settings, window, pacer, folder.path()};
};

}  // namespace quorvel::test
