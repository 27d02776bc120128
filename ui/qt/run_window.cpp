#include "ui/qt/run_window.h"

#include <QApplication>
#include <QTimer>

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

void nameApplication() {
  QApplication::setApplicationName(QStringLiteral("quorvel"));
  QApplication::setApplicationVersion(toQString(kVersion));
  QApplication::setDesktopFileName(QStringLiteral("quorvel"));
  QApplication::setWindowIcon(windowIcon());
}

}  // namespace

int runWindow(int argc, char** argv, const WindowStart& start) {
  const QApplication application(argc, argv);
  nameApplication();
  useReadableColours();
  frmSplash splash;
  splash.show();
  QApplication::processEvents();

  QtFileDialogs dialogs;
  Pacer pacer;
  MainWindow window(dialogs);
  frmMain commands(start.files, start.settings, window, pacer, start.programFolder);
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
