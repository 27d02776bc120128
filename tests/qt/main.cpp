// Runs the window's tests without a screen. A warning of Qt fails the test it happens in.
#include <gtest/gtest.h>

#include <QApplication>

namespace {

/// What the screenless platform says about itself.
bool isExpected(const QString& message) {
  return message.contains(QStringLiteral("This plugin does not support")) ||
         message.contains(QStringLiteral("XDG_RUNTIME_DIR"));
}

void failOnWarning(QtMsgType type, const QMessageLogContext&, const QString& message) {
  if (type == QtDebugMsg || type == QtInfoMsg || isExpected(message)) return;
  if (type == QtFatalMsg) fprintf(stderr, "%s\n", qPrintable(message));  // the program ends next
  ADD_FAILURE() << "Qt says: " << qPrintable(message);
}

}  // namespace

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  qInstallMessageHandler(failOnWarning);
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  const QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
