// The window as a user works with it.
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QShortcut>
#include <QSignalSpy>
#include <QSplitter>
#include <QTest>
#include <QUrl>

#include "tests/qt/window_fixture.h"

namespace quorvel::test {

void WindowTest::click(const QModelIndex& index) {
  SessionTreeBox& tree = window.panes().tree();
  tree.scrollTo(index);
  QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualRect(index).center());
}

std::string WindowTest::treeHeader() {
  return window.findChild<QLabel*>(QStringLiteral("lblTreeHeader"))->text().toStdString();
}

QStringList WindowTest::treeLines() {
  QStringList lines;
  const QAbstractItemModel* const model = window.panes().tree().model();
  for (int parent = 0; parent < model->rowCount(); ++parent) {
    lines += row(parent).data().toString();
    for (int child = 0; child < model->rowCount(row(parent)); ++child)
      lines += u' ' + row(parent, child).data().toString();
  }
  return lines;
}

namespace {

const std::string kLog =
    sessionLog(1, "10.0.0.5", "alice", "Sent file c:\\a.zip successfully (1.00 Kb/sec - 1024 bytes)") +
    sessionLog(2, "10.0.0.6", "bob") + sessionLog(3, "10.0.0.5", "alice");

TEST_F(WindowTest, StartsWithVersionHeadersAndWithoutProgress) {
  EXPECT_EQ(status(), "Version: 1.1.400");
  EXPECT_EQ(treeHeader(), "Username\n|--Logontime");
  EXPECT_FALSE(canChoose(MenuItem::mnuFilterAll));
  EXPECT_FALSE(canChoose(MenuItem::mnuCountAllTransfers));
  EXPECT_FALSE(window.findChild<QWidget*>(QStringLiteral("ProgressBar1"))->isVisible());
  EXPECT_FALSE(window.findChild<QWidget*>(QStringLiteral("lblCurrentPos"))->isVisible());
  EXPECT_EQ(window.windowTitle(), QStringLiteral("Quorvel analyzer"));
}

TEST_F(WindowTest, ALogIsOpenedItsUsersFoundAndASessionShown) {
  openAndFind(kLog);
  EXPECT_EQ(status(StatusPanel::LogType), "Serv-U log file");
  EXPECT_EQ(status(StatusPanel::Logons), "Logons: 3");
  EXPECT_EQ(treeLines(), QStringList({QStringLiteral("alice"), QStringLiteral(" Mon 05Mar01 10:15:02"),
                                      QStringLiteral(" Mon 05Mar01 10:15:02"), QStringLiteral("bob"),
                                      QStringLiteral(" Mon 05Mar01 10:15:02")}));
  EXPECT_EQ(window.focusWidget(), &window.panes().tree());
  window.panes().tree().expandAll();
  click(row(1, 0));
  EXPECT_TRUE(window.userInfo().starts_with("Username:   bob\r\nFrom IP:    10.0.0.6\r\n")) << window.userInfo();
  EXPECT_NE(window.filterText().find("(000002) Closing connection"), std::string::npos);
  EXPECT_EQ(window.filterText().find("(000001)"), std::string::npos);
  EXPECT_TRUE(window.panes().filter().toPlainText().contains(QStringLiteral("(000002) USER bob")));
}

TEST_F(WindowTest, ThePopUpMenuSwitchesTheLayout) {
  openAndFind(kLog);
  QContextMenuEvent press(QContextMenuEvent::Mouse, QPoint(5, 5), window.mapToGlobal(QPoint(5, 5)));
  QCoreApplication::sendEvent(window.panes().tree().viewport(), &press);
  EXPECT_TRUE(window.menus().treePopup().isVisible());
  EXPECT_TRUE(window.menus().action(MenuItem::mnuShowUsernameLogontime).isChecked());
  window.menus().treePopup().hide();
  onDialog<QMessageBox>([](QMessageBox& box) { box.button(QMessageBox::Yes)->click(); });
  choose(MenuItem::mnuShowIPUsername);
  EXPECT_EQ(treeHeader(), "IP\n|--Username");
  EXPECT_EQ(treeLines(), QStringList({QStringLiteral("10.0.0.5"), QStringLiteral(" alice"), QStringLiteral(" alice"),
                                      QStringLiteral("10.0.0.6"), QStringLiteral(" bob")}));
}

TEST_F(WindowTest, CheckedSessionsAreFilteredToAFile) {
  openAndFind(kLog);
  choose(MenuItem::mnuShowCheckboxesInTreeView);
  EXPECT_TRUE(window.menus().action(MenuItem::mnuShowCheckboxesInTreeView).isChecked());
  window.panes().tree().expandAll();
  click(row(0, 0));
  window.panes().tree().setCurrentIndex(row(1, 0));
  QTest::keyClick(&window.panes().tree(), Qt::Key_Space);
  dialogs.answer = folder / "out.txt";
  choose(MenuItem::mnuFilterSelected);
  const std::string results = folder.read("out.txt");
  EXPECT_NE(results.find("(000002) USER bob"), std::string::npos);
  EXPECT_EQ(results.find("(000001) USER"), std::string::npos);
  choose(MenuItem::mnuTreeViewUncheckAll);
  EXPECT_EQ(row(1, 0).data(Qt::CheckStateRole).toInt(), Qt::Unchecked);
}

TEST_F(WindowTest, ACountIsShownAndPasted) {
  openAndFind(kLog);
  onDialog<QDialog>([](QDialog& result) {
    EXPECT_EQ(result.windowTitle(), QStringLiteral("Counter result - all users"));
    result.findChild<QPushButton*>(QStringLiteral("cmdPasteResultTortbFilter"))->click();
    EXPECT_EQ(result.focusWidget()->objectName(), QStringLiteral("cmdClose"));
    QTest::keyClick(&result, Qt::Key_Escape);
  });
  choose(MenuItem::mnuCountAllTransfers);
  EXPECT_NE(window.filterText().find("--- COUNTER RESULT - ALL USERS ---"), std::string::npos);
  EXPECT_EQ(status(), "Using Serv-U log file");
}

TEST_F(WindowTest, HostileNamesAreShownAsTheyStand) {
  settings.WriteSetting("MAIN", "TrunkLongUsernames", "0");
  openAndFind(sessionLog(1, "10.0.0.5", "<b>bold</b>") + sessionLog(2, "10.0.0.5", "x\x1b[31m\x81") +
              sessionLog(3, "10.0.0.5", "12345") + sessionLog(4, "10.0.0.5", "&copy;"));
  EXPECT_EQ(row(2).data().toString(), QStringLiteral("&copy;")) << "a name of digits only gets no node";
  window.panes().tree().expandAll();
  click(row(0, 0));
  EXPECT_TRUE(window.panes().userInfo().toPlainText().startsWith(QStringLiteral("Username:   <b>bold</b>\n")));
  click(row(1, 0));
  EXPECT_TRUE(window.userInfo().starts_with("Username:   x\x1b[31m\x81\r\n"));
}

TEST_F(WindowTest, ANameTooLongForARecordIsReportedAndTheOthersStay) {
  settings.WriteSetting("MAIN", "TrunkLongUsernames", "0");
  QString message;
  onDialog<QMessageBox>([&message](QMessageBox& box) {
    message = box.text();
    box.accept();
  });
  openAndFind(sessionLog(1, "10.0.0.5", std::string(500, 'n')) + sessionLog(2, "10.0.0.6", "bob"));
  EXPECT_TRUE(message.startsWith(QStringLiteral("One or more errors where generated"))) << message.toStdString();
  EXPECT_TRUE(treeLines().contains(QStringLiteral("bob")));
}

/// Does something at the first yield of a running command.
class WhileScanning : public WindowTest {
 protected:
  WhileScanning() {
    std::string log;
    for (int i = 1; i <= 3'000; ++i)
      log += sessionLog(i, "10.0.0.5", "alice");
    open(folder.write("ftp.log", log));
  }

  void findUsers(std::function<void()> during) {
    QTimer::singleShot(0, &window, [this, during] {
      EXPECT_TRUE(commands.state().commandRunning);
      during();
    });
    choose(MenuItem::mnuFindUsers);
  }
};

TEST_F(WhileScanning, OnlyStopAndExitCanBeChosenAndAnotherCommandIsRefused) {
  findUsers([this] {
    EXPECT_FALSE(canChoose(MenuItem::mnuOpenLogFile));
    EXPECT_TRUE(canChoose(MenuItem::mnuStop));
    EXPECT_TRUE(window.findChild<QWidget*>(QStringLiteral("ProgressBar1"))->isVisible());
    commands.mnuFindUsers_Click();
  });
  EXPECT_EQ(status(StatusPanel::Logons), "Logons: 3000");
  EXPECT_TRUE(canChoose(MenuItem::mnuOpenLogFile));
  EXPECT_TRUE(canChoose(MenuItem::mnuFilterAll));
}

TEST_F(WhileScanning, EscapeStops) {
  window.activateWindow();
  findUsers([this] { emit window.findChild<QShortcut*>()->activated(); });
  EXPECT_NE(status(StatusPanel::Logons), "Logons: 3000");
  EXPECT_EQ(window.panes().tree().model()->rowCount(), 0);
}

TEST_F(WhileScanning, ClosingStopsTheScanFirstAndThenCloses) {
  const QSignalSpy closed(&window, &MainWindow::closed);
  findUsers([this] {
    window.close();
    EXPECT_TRUE(window.isVisible());
  });
  EXPECT_TRUE(QTest::qWaitFor([&closed] { return !closed.isEmpty(); }));
  EXPECT_FALSE(window.isVisible());
  EXPECT_EQ(closed.size(), 1);
  EXPECT_FALSE(folder.has("users.qva"));
}

TEST_F(WindowTest, ClosingSavesTheBoundsAndDeletesTheUsersFile) {
  openAndFind(kLog);
  window.move(40, 50);
  window.resize(700, 500);
  EXPECT_TRUE(folder.has("users.qva"));
  choose(MenuItem::mnuExit);
  EXPECT_FALSE(window.isVisible());
  EXPECT_FALSE(folder.has("users.qva"));
  EXPECT_EQ(settings.readNumber("POSITION", "MainLeft"), 40);
  EXPECT_EQ(settings.readNumber("POSITION", "MainTop"), 50);
  EXPECT_EQ(settings.readNumber("POSITION", "MainWidth"), 700);
  EXPECT_EQ(settings.readNumber("POSITION", "MainHeight"), 500);
}

TEST_F(WindowTest, TheTreeKeepsItsShareUntilTheUserMovesTheSplitter) {
  const auto rightEdge = [this](int windowWidth) {
    window.resize(windowWidth, 600);
    runEvents();
    return window.panes().filter().mapTo(&window.panes(), QPoint()).x();
  };
  EXPECT_NEAR(rightEdge(700), treeWidth(700) + 7, 2);
  EXPECT_NEAR(rightEdge(1200), treeWidth(1200) + 7, 2);
  QSplitterHandle* const handle = window.findChild<QSplitter*>()->handle(1);
  QTest::mousePress(handle, Qt::LeftButton, {}, QPoint(2, 50));
  QTest::mouseMove(handle, QPoint(-200, 50));
  QTest::mouseRelease(handle, Qt::LeftButton, {}, QPoint(-200, 50));
  EXPECT_LT(rightEdge(1210), treeWidth(1200) - 150);
}

TEST_F(WindowTest, ASecondLogTakesThePlaceOfTheFirst) {
  openAndFind(kLog);
  open(folder.write("other.log", sessionLog(9, "10.0.0.9", "zoe")));
  EXPECT_EQ(status(), "Using other.log");
  EXPECT_FALSE(canChoose(MenuItem::mnuFilterAll));
  choose(MenuItem::mnuFindUsers);
  EXPECT_EQ(treeLines().constFirst(), QStringLiteral("zoe"));
}

/// Drops files on the window; whether it took them.
bool drop(MainWindow& window, const QList<QUrl>& urls) {
  QMimeData data;
  data.setUrls(urls);
  QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
  QCoreApplication::sendEvent(&window, &enter);
  QDropEvent event(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
  QCoreApplication::sendEvent(&window, &event);
  return event.isAccepted();
}

TEST_F(WindowTest, ADroppedLogIsOpenedAndAnythingElseRefused) {
  const auto url = [this](const char* name) {
    return QUrl::fromLocalFile(QString::fromStdString((folder / name).string()));
  };
  folder.write("a.log", kLog);
  const QList<QUrl> refused[] = {{url("a.log"), url("a.log")},
                                 {url("missing.log")},
                                 {QUrl::fromLocalFile(QString::fromStdString(folder.path().string()))},
                                 {QUrl(QStringLiteral("https://example.org/a.log"))}};
  for (const QList<QUrl>& urls : refused) {
    EXPECT_FALSE(drop(window, urls));
    EXPECT_TRUE(commands.state().logPath.empty());
    EXPECT_TRUE(status().starts_with("Only one log file")) << status();
  }
  EXPECT_TRUE(drop(window, {url("a.log")}));
  EXPECT_EQ(status(), "Using a.log");
}

}  // namespace
}  // namespace quorvel::test
