#include "ui/qt/run_window.h"

#include <QApplication>
#include <QTimer>
#include <new>

#include "app/pacer.h"
#include "app/program.h"
#include "ui/qt/file_dialogs.h"
#include "ui/qt/main_window.h"
#include "ui/qt/readable_colours.h"
#include "ui/qt/splash_window.h"
#include "ui/qt/text.h"
#include "ui/qt/window_icon.h"

namespace quorvel {
namespace {

constexpr std::chrono::milliseconds kSplashTime(700);

class Application final : public QApplication {
 public:
  Application(int& argc, char** argv, void (*endOutOfMemory)())
      : QApplication(argc, argv), m_endOutOfMemory(endOutOfMemory) {}

  bool notify(QObject* receiver, QEvent* event) override {
    try {
      return QApplication::notify(receiver, event);
    } catch (const std::bad_alloc&) {
      m_endOutOfMemory();
      throw;
    }
  }

 private:
  void (*m_endOutOfMemory)();
};

void nameApplication() {
  QApplication::setApplicationName(QStringLiteral("quorvel"));
  QApplication::setApplicationVersion(toQString(kVersion));
  QApplication::setDesktopFileName(QStringLiteral("quorvel"));
  QApplication::setWindowIcon(windowIcon());
}

}  // namespace

int runWindow(int argc, char** argv, const WindowStart& start) {
  const Application application(argc, argv, start.endOutOfMemory);
  nameApplication();
  useReadableColours();
  frmSplash splash;
  splash.show();
  QApplication::processEvents();

  QtFileDialogs dialogs;
  Pacer pacer;
  MainWindow window(dialogs);
  frmMain commands(start.files, start.settings, window, pacer, start.programFolder, start.workingFolder);
  window.connectCommands(commands);
  commands.load();
  window.applyStoredPlacement();
  window.show();
  splash.raise();
  QTimer::singleShot(kSplashTime, &splash, &QWidget::close);
  QObject::connect(&window, &MainWindow::closed, &application, &QCoreApplication::quit, Qt::QueuedConnection);
  if (start.afterStartUp) QTimer::singleShot(0, &window, [&] { start.afterStartUp(commands); });
  const int status = QApplication::exec();
  window.disconnectCommands();
  return status;
}

}  // namespace quorvel
