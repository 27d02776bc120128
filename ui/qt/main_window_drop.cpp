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

/// Why what was dropped cannot be opened; empty when it is one plain file.
std::string_view whyNotOneLog(const QMimeData& data) {
  const QList<QUrl> urls = data.urls();
  if (urls.size() != 1) return "Only one log file at a time can be dropped here";
  if (!urls.constFirst().isLocalFile()) return "Only a file of this computer can be dropped here";
  const QFileInfo file(urls.constFirst().toLocalFile());
  if (file.isDir()) return "This is a folder; please drop the log file that lies in it";
  return file.isFile() ? "" : "This is not a file";
}

}  // namespace

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  if (m_commands == nullptr || commandRuns()) return event->ignore();
  if (const std::string_view reason = whyNotOneLog(*event->mimeData()); !reason.empty()) {
    setStatusPanel(StatusPanel::Text, reason);
    return event->ignore();
  }
  event->acceptProposedAction();
  m_commands->openLogFile(toPath(event->mimeData()->urls().constFirst().toLocalFile()));
}

}  // namespace quorvel
