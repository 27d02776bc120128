// The window as a user works with it.
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPrintDialog>
#include <QPrinterInfo>
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

namespace {

const std::string kLog =
    sessionLog(1, "10.0.0.5", "alice", "Sent file c:\\a.zip successfully (1.00 Kb/sec - 1024 bytes)") +
    sessionLog(2, "10.0.0.6", "bob") + sessionLog(3, "10.0.0.5", "alice");

TEST_F(WindowTest, StartsWithVersionHeadersAndWithoutProgress) {
  EXPECT_EQ(status(), "Version: 1.1.400");
  EXPECT_EQ(treeHeader(), "Username\n|--Logontime");
  EXPECT_FALSE(canChoose(MenuItem::mnuFilterAll));
  EXPECT_FALSE(canChoose(MenuItem::mnuCountAllTransfers));
  for (const char* const name : {"ProgressBar1", "lblCurrentPos", "cmdStop"})
    EXPECT_FALSE(part<QWidget>(name).isVisible()) << name;
  EXPECT_EQ(window.windowTitle(), QStringLiteral("Quorvel analyzer"));
}

TEST_F(WindowTest, ALogIsOpenedItsUsersFoundAndASessionShownAndCopied) {
  openAndFind(kLog);
  EXPECT_EQ(status(StatusPanel::LogType), "Serv-U log file");
  EXPECT_EQ(status(StatusPanel::Logons), "Logons: 3");
  const QString time = QStringLiteral(" Mon 05Mar01 10:15:02");
  EXPECT_EQ(treeLines(), QStringList({QStringLiteral("alice"), time, time, QStringLiteral("bob"), time}));
  EXPECT_EQ(window.focusWidget(), &window.panes().tree());
  window.panes().tree().expandAll();
  click(row(1, 0));
  EXPECT_TRUE(window.userInfo().starts_with("Username:   bob\r\nFrom IP:    10.0.0.6\r\n")) << window.userInfo();
  EXPECT_NE(window.filterText().find("(000002) Closing connection"), std::string::npos);
  EXPECT_EQ(window.filterText().find("(000001)"), std::string::npos);
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window)) << "shortcuts work there only";
  QTest::keyClick(&window, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), time.mid(1)) << "of the tree, which has the keyboard";
  PlainTextBox& filter = window.panes().filter();
  filter.setFocus();
  QTest::keyClick(&filter, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(&filter, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), filter.toPlainText());
  EXPECT_TRUE(filter.toPlainText().contains(QStringLiteral("(000002) USER bob")));
}

TEST_F(WindowTest, ThePopUpMenuSwitchesTheLayout) {
  openAndFind(kLog);
  QContextMenuEvent press(QContextMenuEvent::Mouse, QPoint(5, 5), window.mapToGlobal(QPoint(5, 5)));
  QCoreApplication::sendEvent(window.panes().tree().viewport(), &press);
  EXPECT_TRUE(window.menus().treePopup().isVisible());
  window.menus().treePopup().hide();
  choose(MenuItem::mnuShowUsernameLogontime);
  EXPECT_TRUE(window.menus().action(MenuItem::mnuShowUsernameLogontime).isChecked()) << "chosen again, it stays";
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

TEST_F(WindowTest, ACountIsShownAndPastedAsOftenAsAsked) {
  openAndFind(kLog);
  onDialog<QDialog>([this](QDialog& result) {
    EXPECT_EQ(result.windowTitle(), QStringLiteral("Counter result - all users"));
    EXPECT_EQ(status(), "Displaying counter result");
    for (int i = 0; i < 2; ++i)
      result.findChild<QPushButton*>(QStringLiteral("cmdPasteResultTortbFilter"))->click();
    EXPECT_EQ(result.focusWidget()->objectName(), QStringLiteral("cmdClose"));
    QTest::keyClick(&result, Qt::Key_Escape);
  });
  choose(MenuItem::mnuCountAllTransfers);
  const std::string heading = "\r\n\r\n--- COUNTER RESULT - ALL USERS ---\r\n";
  EXPECT_TRUE(window.filterText().starts_with(heading));
  EXPECT_NE(window.filterText().find(heading, heading.size()), std::string::npos);
  EXPECT_EQ(status(), "Using Serv-U log file");
}

TEST_F(WindowTest, WhatIsShownIsPrintedToAPdfFile) {
  if (!QPrinterInfo::availablePrinterNames().isEmpty()) GTEST_SKIP() << "there is a printer";
  openAndFind(kLog);
  onDialog<QPrintDialog>([&](QPrintDialog& dialog) {
    EXPECT_FALSE(canChoose(MenuItem::mnuFindUsers));
    auto& file = *dialog.findChild<QLineEdit*>(QStringLiteral("filename"));
    EXPECT_TRUE(file.text().endsWith(QStringLiteral("/ftp.pdf"))) << file.text().toStdString();
    file.setText(QString::fromStdString((folder / "printed.pdf").string()));
    dialog.accept();
    if (dialog.isVisible()) dialog.reject();  // something in it was wrong
  });
  choose(MenuItem::mnuPrint);
  EXPECT_TRUE(folder.read("printed.pdf").starts_with("%PDF"));
  EXPECT_TRUE(canChoose(MenuItem::mnuFindUsers));
}

TEST_F(WindowTest, HostileNamesAreShownAsTheyStand) {
  settings.WriteSetting("MAIN", "TrunkLongUsernames", "0");
  openAndFind(sessionLog(1, "10.0.0.5", "<b>bold</b>") + sessionLog(2, "10.0.0.5", "x\x1b[31m\x81") +
              sessionLog(3, "10.0.0.5", "12345") + sessionLog(4, "10.0.0.5", "&copy;"));
  EXPECT_EQ(row(0).data().toString(), QStringLiteral("<b>bold</b>"));
  EXPECT_EQ(row(1).data().toString(), QStringLiteral("x\u241b[31m\u0081"));
  EXPECT_EQ(row(2).data().toString(), QStringLiteral("&copy;")) << "a name of digits only gets no node";
  window.panes().tree().expandAll();
  click(row(0, 0));
  EXPECT_TRUE(window.panes().userInfo().toPlainText().startsWith(QStringLiteral("Username:   <b>bold</b>\n")));
  click(row(1, 0));
  EXPECT_TRUE(window.userInfo().starts_with("Username:   x\x1b[31m\x81\r\n"));
}

/// Each of these ends with a message, and the window goes on.
TEST_F(WindowTest, TroubleIsToldInAMessage) {
  QString message;
  const auto messageOf = [&](const std::function<void()>& act) {
    message.clear();
    onDialog<QMessageBox>([&](QMessageBox& box) {
      message = box.text();
      box.reject();
    });
    act();
    return message;
  };
  settings.WriteSetting("MAIN", "TrunkLongUsernames", "0");
  const std::string log = sessionLog(1, "10.0.0.5", std::string(500, 'n')) + sessionLog(2, "10.0.0.6", "bob");
  EXPECT_TRUE(messageOf([&] { openAndFind(log); }).startsWith(QStringLiteral("One or more errors where generated")));
  EXPECT_TRUE(treeLines().contains(QStringLiteral("bob")));
  window.panes().tree().expandAll();
  click(row(0, 0));
  dialogs.answer = folder / "missing" / "out.txt";
  const QString name = QString::fromStdString(dialogs.answer.string());
  for (const MenuItem item : {MenuItem::mnuFilterAll, MenuItem::mnuSaveFilterWindow, MenuItem::mnuSaveShortInfo})
    EXPECT_TRUE(messageOf([&] { choose(item); }).remove(u'\n').contains(name)) << message.toStdString();
  std::filesystem::remove(folder / "users.qva");
  EXPECT_TRUE(messageOf([&] { click(row(0, 0)); }).startsWith(QStringLiteral("Lost file: users.qva\n")));
  EXPECT_EQ(status(), "Using ftp.log");
}

/// Does something while Find users runs.
class WhileScanning : public WindowTest {
 protected:
  WhileScanning() {
    std::string log;
    for (int i = 1; i <= kSessions; ++i)
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
  [[nodiscard]] bool wasStopped() {
    const bool foundAll = status(StatusPanel::Logons) == "Logons: " + std::to_string(kSessions);
    return !foundAll && window.panes().tree().model()->rowCount() == 0;
  }

  static constexpr int kSessions = 3'000;
};

TEST_F(WhileScanning, OnlyStopAndExitCanBeChosenAndAnotherCommandIsRefused) {
  findUsers([this] {
    for (std::size_t i = 0; i < Menus::kItemCount; ++i) {
      const auto item = static_cast<MenuItem>(i);
      EXPECT_EQ(canChoose(item), item == MenuItem::mnuStop || item == MenuItem::mnuExit) << i;
    }
    EXPECT_TRUE(part<QWidget>("ProgressBar1").isVisible());
    commands.mnuFindUsers_Click();
    window.enableMenuItem(MenuItem::mnuPrint, false);
    EXPECT_FALSE(canChoose(MenuItem::mnuFilterAll));
  });
  EXPECT_FALSE(wasStopped());
  EXPECT_TRUE(canChoose(MenuItem::mnuOpenLogFile));
  EXPECT_TRUE(canChoose(MenuItem::mnuFilterAll)) << "what the command enables is enabled when it ends";
  EXPECT_FALSE(canChoose(MenuItem::mnuPrint));
}

TEST_F(WhileScanning, EscapeAndTheButtonStop) {
  window.activateWindow();
  findUsers([this] { emit window.findChild<QShortcut*>()->activated(); });
  EXPECT_TRUE(wasStopped());
  findUsers([this] { part<QPushButton>("cmdStop").click(); });
  EXPECT_TRUE(wasStopped());
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
  const std::pair<const char*, int> bounds[] = {
      {"MainLeft", 40}, {"MainTop", 50}, {"MainWidth", 700}, {"MainHeight", 500}};
  for (const auto& [key, value] : bounds)
    EXPECT_EQ(settings.readNumber("POSITION", key), value) << key;
}

TEST_F(WindowTest, TheTreeKeepsItsShareUntilTheUserMovesTheSplitter) {
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

TEST_F(WindowTest, ADroppedLogTakesThePlaceOfTheFirstAndAnythingElseIsRefused) {
  const auto url = [this](const char* name) {
    return QUrl::fromLocalFile(QString::fromStdString((folder / name).string()));
  };
  openAndFind(kLog);
  folder.write("other.log", sessionLog(9, "10.0.0.9", "zoe"));
  const QList<QUrl> refused[] = {{url("other.log"), url("other.log")},
                                 {url("missing.log")},
                                 {QUrl::fromLocalFile(QString::fromStdString(folder.path().string()))},
                                 {QUrl(QStringLiteral("https://example.org/a.log"))}};
  for (const QList<QUrl>& urls : refused) {
    EXPECT_FALSE(drop(window, urls));
    EXPECT_EQ(commands.state().logTitle, "ftp.log");
    EXPECT_TRUE(status().starts_with("Only one log file")) << status();
  }
  EXPECT_TRUE(drop(window, {url("other.log")}));
  EXPECT_EQ(status(), "Using other.log");
  EXPECT_FALSE(canChoose(MenuItem::mnuFilterAll));
  choose(MenuItem::mnuFindUsers);
  EXPECT_EQ(treeLines().constFirst(), QStringLiteral("zoe"));
}

}  // namespace
}  // namespace quorvel::test
