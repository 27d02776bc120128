#include "ui/qt/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QSettings>
#include <QShortcut>
#include <QStatusBar>

#include "app/menu_commands.h"
#include "app/program.h"
#include "ui/qt/menus.h"
#include "ui/qt/one_line_label.h"
#include "ui/qt/progress_row.h"
#include "ui/qt/session_tree_box.h"
#include "ui/qt/session_tree_model.h"
#include "ui/qt/session_tree_page.h"
#include "ui/qt/text.h"
#include "ui/qt/tool_dialogs.h"
#include "ui/qt/window_icon.h"
#include "ui/qt/window_placement.h"

namespace quorvel {
namespace {

constexpr int kStatusBarMargin = 2;  // pixels that a status bar leaves free at its edge by itself

}  // namespace

MainWindow::MainWindow(FileDialogs& dialogs)
    : m_dialogs(dialogs),
      m_menus(new Menus(*menuBar())),
      m_sessionTreePage(new SessionTreePage),
      m_stopShortcut(new QShortcut(Qt::Key_Escape, this)) {
  setObjectName(QStringLiteral("frmMain"));
  setWindowTitle(toTitle(kProgramName));
  setWindowIcon(windowIcon());
  setAcceptDrops(true);
  setCentralWidget(m_sessionTreePage);
  m_sessionTreePage->tree().setFocus();
  addStatusPanels();
  m_stopShortcut->setEnabled(false);
  connect(m_stopShortcut, &QShortcut::activated, this, [this] { onChosen(MenuItem::mnuStop); });
  connect(&m_sessionTreePage->progress(), &ProgressRow::stopRequested, this, [this] { onChosen(MenuItem::mnuStop); });
  connect(m_menus, &Menus::chosen, this, &MainWindow::onChosen);
  connectTree();
}

MainWindow::~MainWindow() {
  disconnectCommands();
}

void MainWindow::addStatusPanels() {
  constexpr std::array kWidths = {5, 2, 2, 3};
  statusBar()->setContentsMargins(SessionTreePage::kGap - kStatusBarMargin, 0, 0, kStatusBarMargin);
  for (std::size_t i = 0; i < m_panels.size(); ++i) {
    m_panels[i] = new OneLineLabel;
    m_panels[i]->setObjectName(QStringLiteral("StatusBar1_%1").arg(i + 1));
    statusBar()->addWidget(m_panels[i], kWidths[i]);
  }
}

void MainWindow::connectTree() {
  connect(&m_sessionTreePage->tree(), &SessionTreeBox::nodeClicked, this, [this](std::int32_t node) {
    if (m_commands != nullptr && !commandRuns()) m_commands->TreeView1_NodeClick(node);
  });
  connect(&m_sessionTreePage->tree(), &SessionTreeBox::menuRequested, this, &MainWindow::onTreeMenuRequested);
}

void MainWindow::connectCommands(frmMain& commands) {
  m_commands = &commands;
  m_treeModel = std::make_unique<SessionTreeModel>(commands.state().tree);
  connect(m_treeModel.get(), &SessionTreeModel::checkRequested, this,
          [this](std::int32_t node, bool checked) { m_commands->setNodeChecked(node, checked); });
  m_sessionTreePage->tree().showModel(m_treeModel.get());
  const auto settingsFile = commands.state().programFolder / "pages.ini";
  m_pageSettings = std::make_unique<QSettings>(toFileName(settingsFile), QSettings::IniFormat);
  m_sessionTreePage->restore(*m_pageSettings);
}

void MainWindow::disconnectCommands() {
  m_sessionTreePage->tree().showModel(nullptr);
  m_treeModel.reset();
  m_commands = nullptr;
}

void MainWindow::applyStoredPlacement() {
  applyPlacement(*this, m_commands->readPlacement());
}

QString MainWindow::statusText(StatusPanel panel) const {
  return m_panels[static_cast<std::size_t>(panel) - 1]->text();
}

void MainWindow::onChosen(MenuItem item) {
  if (m_commands == nullptr) return;
  if (item == MenuItem::mnuExit) return closeWindow();
  if (const Tool tool = toolFor(item)) return tool(*this, *m_commands);
  runMenuCommand(item, *m_commands);
}

void MainWindow::onTreeMenuRequested(const QPoint& position) {
  if (m_commands == nullptr || commandRuns()) return;
  m_treeMenuPosition = position;
  m_commands->TreeView1_RightButton();
}

bool MainWindow::commandRuns() const {
  return m_commands != nullptr && m_commands->state().commandRunning;
}

void MainWindow::stopCommand() {
  if (commandRuns()) m_commands->mnuStop_Click();
}

bool MainWindow::event(QEvent* event) {
  // A command that asks something cannot be stopped but by the answer.
  if (event->type() == QEvent::WindowBlocked) m_sessionTreePage->progress().showStop(false);
  if (event->type() == QEvent::WindowUnblocked) m_sessionTreePage->progress().showStop(commandRuns());
  return QMainWindow::event(event);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (commandRuns()) {
    m_isClosing = true;
    stopCommand();
    return event->ignore();
  }
  for (QWidget* const other : QApplication::topLevelWidgets()) {
    if (other != this && other->isVisible()) other->close();
  }
  if (m_commands != nullptr) {
    m_commands->unload(normalBounds(*this), isMaximized());
    m_sessionTreePage->save(*m_pageSettings);
    m_pageSettings->sync();
  }
  disconnectCommands();
  event->accept();
  emit closed();
}

}  // namespace quorvel
