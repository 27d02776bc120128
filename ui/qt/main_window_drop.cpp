// Dragging a log file onto the window opens it.
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

#include "ui/qt/main_window.h"
#include "ui/qt/text.h"

namespace quorvel {
namespace {

/// The one plain file that was dropped; empty for anything else.
QString droppedFile(const QMimeData& data) {
  const QList<QUrl> urls = data.urls();
  if (urls.size() != 1 || !urls.constFirst().isLocalFile()) return {};
  const QString fileName = urls.constFirst().toLocalFile();
  return QFileInfo(fileName).isFile() ? fileName : QString();
}

}  // namespace

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  if (m_commands == nullptr || commandRuns()) return event->ignore();
  const QString fileName = droppedFile(*event->mimeData());
  if (fileName.isEmpty()) {
    setStatusPanel(StatusPanel::Text, "Only one log file at a time can be dropped here");
    return event->ignore();
  }
  event->acceptProposedAction();
  m_commands->openLogFile(toPath(fileName));
}

}  // namespace quorvel
