// The window as a user works with it.
#include <QPrintDialog>
#include <QPrinterInfo>

#include "tests/qt/window_fixture.h"

namespace quorvel::test {
namespace {

class MainWindowTest : public WindowTest {
 protected:
  void click(const QModelIndex& index) {
    tree.scrollTo(index);
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualRect(index).center());
  }
  /// Three sessions of two users, in the tree.
  void findThree() {
    openAndFind(logSession("000001", "alice", "10.0.0.5") + logSession("000002", "bob", "10.0.0.6") +
                logSession("000003", "alice", "10.0.0.5"));
    tree.expandAll();
  }
};

TEST_F(MainWindowTest, ALogIsOpenedItsUsersFoundAndASessionShownAndCopied) {
  EXPECT_FALSE(canChoose(MenuItem::mnuFilterAll));
  findThree();
  EXPECT_EQ(status(StatusPanel::LogType) + ", " + status(StatusPanel::Logons), "Serv-U log file, Logons: 3");
  const std::string time = "Wed 19Jan05 13:28:08";
  EXPECT_EQ(rowTexts(*tree.model()), "alice| " + time + "| " + time + "|bob| " + time);
  EXPECT_EQ(window.focusWidget(), &tree);
  click(row(1, 0));
  EXPECT_TRUE(window.userInfo().starts_with("Username:   bob\r\nFrom IP:    10.0.0.6\r\n")) << window.userInfo();
  EXPECT_EQ(window.filterText(), logSession("000002", "bob", "10.0.0.6"));
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

TEST_F(MainWindowTest, ThePopUpMenuSwitchesTheLayoutAfterAQuestion) {
  findThree();
  QContextMenuEvent press(QContextMenuEvent::Mouse, QPoint(5, 5), window.mapToGlobal(QPoint(5, 5)));
  QCoreApplication::sendEvent(tree.viewport(), &press);
  EXPECT_TRUE(window.menus().treePopup().isVisible());
  window.menus().treePopup().hide();
  choose(MenuItem::mnuShowUsernameLogontime);
  EXPECT_TRUE(window.menus().action(MenuItem::mnuShowUsernameLogontime).isChecked()) << "chosen again, it stays";
  const std::string before = rowTexts(*tree.model());
  for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
    use(answer == QMessageBox::No ? MenuItem::mnuShowUsernameIP : MenuItem::mnuShowIPUsername, [answer](QDialog& box) {
      EXPECT_EQ(box.windowTitle(), QStringLiteral("Quorvel analyzer - update TreeView?"));
      dynamic_cast<QMessageBox&>(box).button(answer)->click();
    });
    EXPECT_EQ(rowTexts(*tree.model()), answer == QMessageBox::No ? before : "10.0.0.5| alice| alice|10.0.0.6| bob");
  }
}

TEST_F(MainWindowTest, CheckedSessionsAreFilteredToAFile) {
  findThree();
  choose(MenuItem::mnuShowCheckboxesInTreeView);
  click(row(0, 0));
  tree.setCurrentIndex(row(1, 0));
  QTest::keyClick(&tree, Qt::Key_Space);
  dialogs.answer = folder / "out.txt";
  choose(MenuItem::mnuFilterSelected);
  EXPECT_EQ(folder.read("filter.qva"), logSession("000002", "bob", "10.0.0.6"));
}

TEST_F(MainWindowTest, ACountIsShownAndPastedAsOftenAsAsked) {
  findThree();
  use(MenuItem::mnuCountAllTransfers, [this](QDialog& result) {
    EXPECT_EQ(status(), "Displaying counter result");
    for (int i = 0; i < 2; ++i)
      part<QPushButton>(result, "cmdPasteResultTortbFilter").click();
    QTest::keyClick(&result, Qt::Key_Escape);
  });
  const QString heading = QStringLiteral("\n\n--- COUNTER RESULT - ALL USERS ---\n");
  EXPECT_EQ(window.panes().filter().toPlainText().count(heading), 2);
  EXPECT_EQ(status(), "Using Serv-U log file");
}

TEST_F(MainWindowTest, WhatIsShownIsPrintedToAPdfFilePageByPage) {
  if (!QPrinterInfo::availablePrinterNames().isEmpty()) GTEST_SKIP() << "there is a printer";
  findThree();
  for (int i = 0; i < 500; ++i)
    window.appendFilterText("line\r\n");
  use(MenuItem::mnuPrint, [this](QDialog& dialog) {
    EXPECT_FALSE(canChoose(MenuItem::mnuFindUsers));
    auto& file = part<QLineEdit>(dialog, "filename");
    EXPECT_TRUE(file.text().endsWith(QStringLiteral("/ftp.pdf"))) << file.text().toStdString();
    file.setText(QString::fromStdString((folder / "printed.pdf").string()));
    dialog.accept();
  });
  const QByteArray pdf = QByteArray::fromStdString(folder.read("printed.pdf"));
  EXPECT_GE(pdf.count("/Type /Page\n"), 5);
  EXPECT_TRUE(canChoose(MenuItem::mnuFindUsers));
}

/// Does something while Find users runs.
class WhileScanning : public MainWindowTest {
 protected:
  WhileScanning() {
    std::string log;
    for (int i = 0; i < 3'000; ++i)
      log += logSession("000001", "alice", "10.0.0.5");
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
  }));
  EXPECT_TRUE(canChoose(MenuItem::mnuOpenLogFile) && canChoose(MenuItem::mnuFilterAll));
  EXPECT_FALSE(canChoose(MenuItem::mnuPrint)) << "as the command wanted it";
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
  EXPECT_FALSE(window.isVisible() || folder.has("users.qva"));
}

TEST_F(MainWindowTest, ClosingSavesTheBounds) {
  window.move(40, 50);
  window.resize(700, 500);
  choose(MenuItem::mnuExit);
  EXPECT_FALSE(window.isVisible());
  const auto [isCentred, bounds, isMaximized] = commands.readPlacement();
  EXPECT_EQ(QRect(bounds.left, bounds.top, bounds.width, bounds.height), QRect(40, 50, 700, 500));
  EXPECT_FALSE(isCentred || isMaximized);
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
  const QString here = QString::fromStdString("file://" + folder.path().string());
  const QString other = QString::fromStdString("file://" + folder.write("other.log", "").string());
  for (const QStringList& refused : {QStringList{other, other}, {here}, {QStringLiteral("https://example.org/a.log")}})
    EXPECT_FALSE(drop(refused) || commands.state().logTitle != "ftp.log");
  EXPECT_TRUE(drop({other}));
  EXPECT_EQ(status(), "Using other.log");
}

}  // namespace
}  // namespace quorvel::test
