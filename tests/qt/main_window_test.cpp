// The window as a user works with it.
#include <QPrintDialog>
#include <QPrinterInfo>

#include "tests/qt/window_fixture.h"

namespace quorvel::test {
namespace {

class MainWindowTest : public WindowTest {
 protected:
  void click(const QModelIndex& index) {
    SessionTreeBox& tree = window.panes().tree();
    tree.scrollTo(index);
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualRect(index).center());
  }
  /// Three sessions of two users, in the tree.
  void findThree() {
    openAndFind(sessionLog(1, "10.0.0.5", "alice", "Sent file c:\\a.zip successfully (1.00 Kb/sec - 1024 bytes)") +
                sessionLog(2, "10.0.0.6", "bob") + sessionLog(3, "10.0.0.5", "alice"));
    window.panes().tree().expandAll();
  }
};

TEST_F(MainWindowTest, ALogIsOpenedItsUsersFoundAndASessionShownAndCopied) {
  EXPECT_EQ(window.windowTitle(), QStringLiteral("Quorvel analyzer"));
  EXPECT_EQ(status(), "Version: 1.1.400");
  EXPECT_FALSE(canChoose(MenuItem::mnuFilterAll) || canChoose(MenuItem::mnuCountAllTransfers));
  for (const char* const name : {"ProgressBar1", "lblCurrentPos", "cmdStop"})
    EXPECT_FALSE(part<QWidget>(window, name).isVisible()) << name;
  findThree();
  EXPECT_EQ(status(StatusPanel::LogType) + ", " + status(StatusPanel::Logons), "Serv-U log file, Logons: 3");
  const std::string time = "Wed 19Jan05 13:28:08";
  EXPECT_EQ(treeLines(), "alice| " + time + "| " + time + "|bob| " + time);
  EXPECT_EQ(window.focusWidget(), &window.panes().tree());
  click(row(1, 0));
  EXPECT_TRUE(window.userInfo().starts_with("Username:   bob\r\nFrom IP:    10.0.0.6\r\n")) << window.userInfo();
  EXPECT_EQ(window.filterText(), sessionLog(2, "10.0.0.6", "bob"));
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window)) << "shortcuts work there only";
  QTest::keyClick(&window, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text().toStdString(), time) << "of the tree, which has the keyboard";
  PlainTextBox& filter = window.panes().filter();
  filter.setFocus();
  QTest::keyClick(&filter, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(&filter, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), filter.toPlainText());
}

TEST_F(MainWindowTest, ThePopUpMenuSwitchesTheLayout) {
  findThree();
  QContextMenuEvent press(QContextMenuEvent::Mouse, QPoint(5, 5), window.mapToGlobal(QPoint(5, 5)));
  QCoreApplication::sendEvent(window.panes().tree().viewport(), &press);
  EXPECT_TRUE(window.menus().treePopup().isVisible());
  window.menus().treePopup().hide();
  choose(MenuItem::mnuShowUsernameLogontime);
  EXPECT_TRUE(window.menus().action(MenuItem::mnuShowUsernameLogontime).isChecked()) << "chosen again, it stays";
  for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
    const bool isWanted = answer == QMessageBox::Yes;
    onDialog<QMessageBox>([answer](QMessageBox& box) {
      EXPECT_EQ(box.windowTitle(), QStringLiteral("Quorvel analyzer - update TreeView?"));
      box.button(answer)->click();
    });
    choose(isWanted ? MenuItem::mnuShowIPUsername : MenuItem::mnuShowUsernameIP);
    EXPECT_EQ(treeHeader(), isWanted ? "IP\n|--Username" : "Username\n|--IP");
    EXPECT_EQ(treeLines() == "10.0.0.5| alice| alice|10.0.0.6| bob", isWanted) << treeLines();
  }
}

TEST_F(MainWindowTest, CheckedSessionsAreFilteredToAFile) {
  findThree();
  choose(MenuItem::mnuShowCheckboxesInTreeView);
  EXPECT_TRUE(window.menus().action(MenuItem::mnuShowCheckboxesInTreeView).isChecked());
  click(row(0, 0));
  window.panes().tree().setCurrentIndex(row(1, 0));
  QTest::keyClick(&window.panes().tree(), Qt::Key_Space);
  dialogs.answer = folder / "out.txt";
  choose(MenuItem::mnuFilterSelected);
  EXPECT_EQ(folder.read("filter.qva"), sessionLog(2, "10.0.0.6", "bob"));
  choose(MenuItem::mnuTreeViewUncheckAll);
  EXPECT_EQ(row(1, 0).data(Qt::CheckStateRole).toInt(), Qt::Unchecked);
}

TEST_F(MainWindowTest, ACountIsShownAndPastedAsOftenAsAsked) {
  findThree();
  onDialog<QDialog>([this](QDialog& result) {
    EXPECT_EQ(result.windowTitle(), QStringLiteral("Counter result - all users"));
    EXPECT_EQ(status(), "Displaying counter result");
    for (int i = 0; i < 2; ++i)
      part<QPushButton>(result, "cmdPasteResultTortbFilter").click();
    EXPECT_EQ(result.focusWidget()->objectName(), QStringLiteral("cmdClose"));
    QTest::keyClick(&result, Qt::Key_Escape);
  });
  choose(MenuItem::mnuCountAllTransfers);
  const QString heading = QStringLiteral("\n\n--- COUNTER RESULT - ALL USERS ---\n");
  EXPECT_EQ(window.panes().filter().toPlainText().count(heading), 2);
  EXPECT_EQ(status(), "Using Serv-U log file");
}

TEST_F(MainWindowTest, WhatIsShownIsPrintedToAPdfFile) {
  if (!QPrinterInfo::availablePrinterNames().isEmpty()) GTEST_SKIP() << "there is a printer";
  findThree();
  onDialog<QPrintDialog>([&](QPrintDialog& dialog) {
    EXPECT_FALSE(canChoose(MenuItem::mnuFindUsers));
    auto& file = part<QLineEdit>(dialog, "filename");
    EXPECT_TRUE(file.text().endsWith(QStringLiteral("/ftp.pdf"))) << file.text().toStdString();
    file.setText(QString::fromStdString((folder / "printed.pdf").string()));
    dialog.accept();
    if (dialog.isVisible()) dialog.reject();  // something in it was wrong
  });
  choose(MenuItem::mnuPrint);
  EXPECT_TRUE(folder.read("printed.pdf").starts_with("%PDF"));
  EXPECT_TRUE(canChoose(MenuItem::mnuFindUsers));
}

/// Does something while Find users runs.
class WhileScanning : public MainWindowTest {
 protected:
  WhileScanning() {
    std::string log;
    for (int i = 1; i <= 3'000; ++i)
      log += sessionLog(i, "10.0.0.5", "alice");
    open(folder.write("ftp.log", log));
  }

  /// Whether all sessions were found in spite of it.
  bool findsUsers(std::function<void()> during) {
    QTimer::singleShot(0, &window, [this, during] {
      EXPECT_TRUE(commands.state().commandRunning);
      during();
    });
    choose(MenuItem::mnuFindUsers);
    EXPECT_EQ(commands.state().tree.nodeCount() > 0, status(StatusPanel::Logons) == "Logons: 3000");
    return commands.state().tree.nodeCount() > 0;
  }
};

TEST_F(WhileScanning, OnlyStopAndExitCanBeChosenAndAnotherCommandIsRefused) {
  EXPECT_TRUE(findsUsers([this] {
    for (std::size_t i = 0; i < Menus::kItemCount; ++i) {
      const auto item = static_cast<MenuItem>(i);
      EXPECT_EQ(canChoose(item), item == MenuItem::mnuStop || item == MenuItem::mnuExit) << i;
    }
    EXPECT_TRUE(part<QWidget>(window, "ProgressBar1").isVisible());
    commands.mnuFindUsers_Click();
    window.enableMenuItem(MenuItem::mnuPrint, false);
    EXPECT_FALSE(canChoose(MenuItem::mnuFilterAll));
  }));
  EXPECT_TRUE(canChoose(MenuItem::mnuOpenLogFile));
  EXPECT_TRUE(canChoose(MenuItem::mnuFilterAll)) << "what the command enables is enabled when it ends";
  EXPECT_FALSE(canChoose(MenuItem::mnuPrint));
}

TEST_F(WhileScanning, EscapeAndTheButtonStop) {
  EXPECT_FALSE(findsUsers([this] {
    EXPECT_TRUE(window.findChild<QShortcut*>()->isEnabled());
    emit window.findChild<QShortcut*>()->activated();
  }));
  EXPECT_FALSE(findsUsers([this] {
    auto& stop = part<QPushButton>(window, "cmdStop");
    EXPECT_TRUE(QTest::qWaitFor([&stop] { return stop.isVisible(); }));
    stop.click();
  }));
}

TEST_F(WhileScanning, ClosingStopsTheScanFirstAndThenCloses) {
  const QSignalSpy closed(&window, &MainWindow::closed);
  EXPECT_FALSE(findsUsers([this] {
    window.close();
    EXPECT_TRUE(window.isVisible());
  }));
  EXPECT_TRUE(QTest::qWaitFor([&closed] { return !closed.isEmpty(); }));
  EXPECT_FALSE(window.isVisible());
  EXPECT_EQ(closed.size(), 1);
  EXPECT_FALSE(folder.has("users.qva"));
}

TEST_F(MainWindowTest, ClosingSavesTheBoundsAndDeletesTheUsersFile) {
  findThree();
  window.move(40, 50);
  window.resize(700, 500);
  EXPECT_TRUE(folder.has("users.qva"));
  choose(MenuItem::mnuExit);
  EXPECT_FALSE(window.isVisible() || folder.has("users.qva"));
  const auto [isCentred, bounds, isMaximized] = commands.readPlacement();
  EXPECT_EQ(QRect(bounds.left, bounds.top, bounds.width, bounds.height), QRect(40, 50, 700, 500));
  EXPECT_FALSE(isCentred || isMaximized);
}

TEST_F(MainWindowTest, TheTreeKeepsItsShareUntilTheUserMovesTheSplitter) {
  const auto rightEdge = [this](int windowWidth) {
    window.resize(windowWidth, 600);
    runEvents();
    return window.panes().filter().mapTo(&window.panes(), QPoint()).x() - MainPanes::kGap;
  };
  EXPECT_NEAR(rightEdge(700), 362, 2);
  EXPECT_NEAR(rightEdge(1200), 621, 2);
  EXPECT_EQ(treeWidth(300), 265) << "never narrower than in a window of 512 pixels";
  QSplitterHandle* const handle = window.findChild<QSplitter*>()->handle(1);
  QTest::mousePress(handle, Qt::LeftButton, {}, QPoint(2, 50));
  QTest::mouseMove(handle, QPoint(-200, 50));
  QTest::mouseRelease(handle, Qt::LeftButton, {}, QPoint(-200, 50));
  EXPECT_LT(rightEdge(1210), 621 - 150);
}

TEST_F(MainWindowTest, ADroppedLogTakesThePlaceOfTheFirstAndAnythingElseIsRefused) {
  const auto drop = [this](const QStringList& addresses) {
    QMimeData data;
    data.setUrls(QUrl::fromStringList(addresses));
    QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&window, &enter);
    QDropEvent event(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&window, &event);
    return event.isAccepted();
  };
  findThree();
  folder.write("other.log", sessionLog(9, "10.0.0.9", "zoe"));
  const QString here = QStringLiteral("file://") + QString::fromStdString(folder.path().string());
  const QString other = here + QStringLiteral("/other.log");
  const QStringList refused[] = {
      {other, other}, {here + QStringLiteral("/missing")}, {here}, {QStringLiteral("https://example.org/a.log")}};
  for (const QStringList& addresses : refused) {
    EXPECT_FALSE(drop(addresses));
    EXPECT_EQ(commands.state().logTitle, "ftp.log");
    EXPECT_TRUE(status().starts_with("Only one log file")) << status();
  }
  EXPECT_TRUE(drop({other}));
  EXPECT_EQ(status(), "Using other.log");
  choose(MenuItem::mnuFindUsers);
  EXPECT_TRUE(treeLines().starts_with("zoe|")) << treeLines();
}

}  // namespace
}  // namespace quorvel::test
