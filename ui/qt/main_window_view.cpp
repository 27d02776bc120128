// What the commands tell the window.
#include <QApplication>
#include <QDesktopServices>
#include <QShortcut>
#include <QUrl>

#include "app/program.h"
#include "ui/qt/busy_pointer.h"
#include "ui/qt/counter_result_window.h"
#include "ui/qt/file_dialogs.h"
#include "ui/qt/main_window.h"
#include "ui/qt/menus.h"
#include "ui/qt/one_line_label.h"
#include "ui/qt/pages/pages.h"
#include "ui/qt/plain_message.h"
#include "ui/qt/plain_text_box.h"
#include "ui/qt/progress_row.h"
#include "ui/qt/session_tree_box.h"
#include "ui/qt/session_tree_model.h"
#include "ui/qt/session_tree_page.h"
#include "ui/qt/text.h"

namespace quorvel {

void MainWindow::setStatusPanel(StatusPanel panel, std::string_view text) {
  m_panels[static_cast<std::size_t>(panel) - 1]->setText(toQString(text));
}

void MainWindow::showBusyPointer(bool busy) {
  quorvel::showBusyPointer(busy);
}

void MainWindow::showLogName(std::string_view name) {
  setWindowTitle(toTitle(name) + QStringLiteral(" - ") + toTitle(kProgramName));
  if (m_commands != nullptr) m_pages->openLog(m_commands->state().logPath);
}

void MainWindow::showProgress(bool visible) {
  m_sessionTreePage->progress().showBar(visible);
}

void MainWindow::setProgressRange(std::int64_t minimum, std::int64_t maximum) {
  m_sessionTreePage->progress().setRange(minimum, maximum);
}

void MainWindow::setProgress(std::int64_t value) {
  m_sessionTreePage->progress().setValue(value);
}

void MainWindow::showPositionLabels(bool visible) {
  m_sessionTreePage->progress().showLabels(visible);
}

void MainWindow::setPositionLabels(std::string_view caption, std::string_view position) {
  m_sessionTreePage->progress().setLabels(caption, position);
}

void MainWindow::showResult(std::string_view text) {
  m_sessionTreePage->progress().showResult(text);
}

void MainWindow::setUserInfo(std::string_view text) {
  m_sessionTreePage->userInfo().setBytes(text);
}

std::string MainWindow::userInfo() const {
  return m_sessionTreePage->userInfo().bytes();
}

void MainWindow::setFilterText(std::string_view text) {
  m_sessionTreePage->filter().setBytes(text);
}

void MainWindow::appendFilterText(std::string_view text) {
  m_sessionTreePage->filter().appendBytes(text);
}

std::string MainWindow::filterText() const {
  return m_sessionTreePage->filter().bytes();
}

void MainWindow::treeIsAboutToChange() {
  if (m_treeModel) m_treeModel->beginChange();
}

void MainWindow::treeHasChanged() {
  if (m_treeModel) m_treeModel->endChange();
}

void MainWindow::treeChecksHaveChanged() {
  m_sessionTreePage->tree().noteChecksChanged();
}

void MainWindow::enableTree(bool enabled) {
  SessionTreeBox& tree = m_sessionTreePage->tree();
  if (!enabled) m_treeHadFocus = focusWidget() == &tree;
  tree.setEnabled(enabled);  // disabled, it loses the keyboard to the next box
  if (enabled && m_treeHadFocus) tree.setFocus();
}

void MainWindow::showTree(bool visible) {
  m_sessionTreePage->showTree(visible);
}

void MainWindow::showTreeCheckBoxes(bool visible) {
  m_sessionTreePage->tree().showCheckBoxes(visible);
}

void MainWindow::setTreeHeader(std::string_view text) {
  m_sessionTreePage->setTreeHeader(text);
}

void MainWindow::enableMenuItem(MenuItem item, bool enabled) {
  m_menus->enable(item, enabled);
}

void MainWindow::checkMenuItem(MenuItem item, bool checked) {
  m_menus->check(item, checked);
}

void MainWindow::popUpTreeMenu() {
  m_menus->treePopup().popup(m_treeMenuPosition);
}

void MainWindow::setCommandRunning(bool running) {
  if (running && m_commands != nullptr && m_commands->state().batchFlag) m_pages->showPage(PageName::SessionTree);
  m_menus->setCommandRunning(running);
  m_stopShortcut->setEnabled(running);
  m_sessionTreePage->tree().letClicksWait(running);
  m_sessionTreePage->progress().showStop(running);
  if (running) m_sessionTreePage->progress().showResult({});
  if (!running && m_isClosing) QMetaObject::invokeMethod(this, &MainWindow::closeWindow, Qt::QueuedConnection);
}

bool MainWindow::showMessage(const Message& message) {
  return showPlainMessage(this, toQString(message.text), message.buttons, toTitle(message.title));
}

FileChoice MainWindow::askOpenFile(const FileRequest& request) {
  const NormalPointer normalPointer;
  return m_dialogs.askOpenFile(this, request);
}

FileChoice MainWindow::askSaveFile(const FileRequest& request) {
  const NormalPointer normalPointer;
  return m_dialogs.askSaveFile(this, request);
}

void MainWindow::showCounterResult(std::string_view caption, std::string_view text) {
  const NormalPointer normalPointer;
  frmCounterResult result(
      caption, text, [this, caption, text] { m_commands->cmdPasteResultTortbFilter_Click(caption, text); }, this);
  result.exec();
}

void MainWindow::openAddress(std::string_view address) {
  QDesktopServices::openUrl(QUrl(toQString(address)));
}

void MainWindow::yield() {
  QCoreApplication::processEvents();
  if (m_isClosing) stopCommand();  // a command clears the Stop flag when it begins its next step
}

void MainWindow::closeWindow() {
  close();
}

}  // namespace quorvel
