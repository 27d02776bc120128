#include "ui/qt/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QSettings>
#include <QShortcut>
#include <QStatusBar>

#include "app/menu_commands.h"
#include "app/program.h"
#include "app/tree_commands.h"
#include "ui/qt/menus.h"
#include "ui/qt/one_line_label.h"
#include "ui/qt/pages/pages.h"
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
      m_pages(new Pages(m_sessionTreePage, dialogs)),
      m_stopShortcut(new QShortcut(Qt::Key_Escape, this)) {
  setObjectName(QStringLiteral("frmMain"));
  setWindowTitle(toTitle(kProgramName));
  setWindowIcon(windowIcon());
  setAcceptDrops(true);
  setCentralWidget(m_pages);
  addStatusPanels();
  m_stopShortcut->setEnabled(false);
  connect(m_stopShortcut, &QShortcut::activated, this, [this] { onChosen(MenuItem::mnuStop); });
  connect(&m_sessionTreePage->progress(), &ProgressRow::stopRequested, this, [this] { onChosen(MenuItem::mnuStop); });
  connect(m_menus, &Menus::chosen, this, &MainWindow::onChosen);
  connectTree();
  connectPages();
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

void MainWindow::connectPages() {
  addPageKeys();
  connect(m_pages, &Pages::pageChanged, this, &MainWindow::onPageChanged);
  connect(m_pages, &Pages::openAsked, this, [this] { onChosen(MenuItem::mnuOpenLogFile); });
  connect(m_pages, &Pages::logAsked, this, [this](const QString& fileName) {
    if (m_commands != nullptr && !commandRuns()) m_commands->openLogFile(toPath(fileName));
  });
  connect(m_pages, &Pages::treeAsked, this, &MainWindow::showInTree);
  connect(m_pages, &Pages::addressAsked, this, [this](const QString& address) {
    if (m_commands != nullptr) lookUp(*this, *m_commands, address.toStdString());
  });
}

void MainWindow::addPageKeys() {
  const auto add = [this](const QKeySequence& keys, void (Pages::*act)()) {
    m_pageKeys += new QShortcut(keys, this);
    connect(m_pageKeys.back(), &QShortcut::activated, m_pages, act);
  };
  add(Qt::CTRL | Qt::Key_F, &Pages::find);
  add(Qt::Key_F3, &Pages::findNext);
  add(Qt::SHIFT | Qt::Key_F3, &Pages::findPrevious);
  add(Qt::CTRL | Qt::Key_S, &Pages::exportShown);
  add(Qt::CTRL | Qt::Key_P, &Pages::printShown);
  add(Qt::CTRL | Qt::Key_G, &Pages::goTo);
  add(Qt::CTRL | Qt::Key_L, &Pages::focusWords);
  for (int page = 0; page < kPageCount; ++page) {
    const auto* const key = new QShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + page)), this);
    connect(key, &QShortcut::activated, this, [this, page] { m_pages->showPage(static_cast<PageName>(page)); });
  }
}

void MainWindow::onPageChanged() {
  const bool isTree = m_pages->showsSessionTree();
  m_menus->setTreeShown(isTree);
  for (QShortcut* const key : m_pageKeys)
    key->setEnabled(!isTree);
  if (isTree) m_sessionTreePage->tree().setFocus();
}

void MainWindow::showInTree(quint64 position) {
  if (m_commands == nullptr || commandRuns()) return;
  m_pages->showPage(PageName::SessionTree);
  if (m_commands->state().tree.nodeCount() == 0) m_commands->mnuFindUsers_Click();
  if (m_commands == nullptr || m_treeModel == nullptr) return;  // closed meanwhile
  const std::int32_t node = nodeOfPosition(m_commands->context(), static_cast<std::int64_t>(position));
  if (node == 0) return;
  m_sessionTreePage->tree().setCurrentIndex(m_treeModel->indexOf(node));
  m_commands->TreeView1_NodeClick(node);
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
  m_pages->start(commands.context().files, commands.state().programFolder, *m_pageSettings);
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
  if (item == MenuItem::mnuFindUsers) m_pages->showPage(PageName::SessionTree);
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
    m_pages->save();
    m_pageSettings->sync();
  }
  disconnectCommands();
  event->accept();
  emit closed();
}

}  // namespace quorvel
