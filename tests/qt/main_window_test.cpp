// The window as a user works with it.
#include <QPrintDialog>
#include <QPrinterInfo>

#include "tests/qt/window_fixture.h"
#include "ui/qt/text.h"

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
  PlainTextBox& filter = window.sessionTreePage().filter();
  filter.setFocus();
  QTest::keyClick(&filter, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(&filter, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), filter.toPlainText());
}

TEST_F(MainWindowTest, AnotherLogTakesThePlaceOfEverythingThatWasShown) {
  EXPECT_EQ(window.windowTitle(), QStringLiteral("Quorvel analyzer"));
  findThree();
  click(row(1, 0));
  EXPECT_EQ(window.windowTitle(), QStringLiteral("ftp.log - Quorvel analyzer"));
  open(folder.write("[*].log", "no log\r\n"));
  EXPECT_EQ(window.windowTitle(), QStringLiteral("[*][*].log - Quorvel analyzer")) << "no mark of a modified document";
  EXPECT_EQ(rowTexts(*tree.model()) + window.userInfo() + window.filterText() + status(StatusPanel::Logons), "");
  for (const MenuItem item : {MenuItem::mnuReloadTreeView02, MenuItem::mnuPopupCountSessionsTransfers})
    EXPECT_FALSE(canChoose(item));
}

TEST_F(MainWindowTest, AHighlightThatTheKeysMovedIsShownOnceTheyRest) {
  findThree();
  click(row(0, 0));
  const QSignalSpy clicks(&tree, &SessionTreeBox::nodeClicked);
  for (int i = 0; i < 3; ++i)
    QTest::keyClick(&tree, Qt::Key_Down);
  EXPECT_EQ(tree.currentIndex(), row(1, 0));
  EXPECT_TRUE(window.userInfo().starts_with("Username:   alice")) << "the keys do not rest yet";
  EXPECT_TRUE(QTest::qWaitFor([this] { return window.userInfo().starts_with("Username:   bob"); }));
  EXPECT_EQ(clicks.size(), 1);
  EXPECT_EQ(commands.state().currentSession.Name, "bob") << "which is what is counted";
  QTest::keyClick(&tree, Qt::Key_Up);
  QTest::keyClick(&tree, Qt::Key_Return);
  QTest::qWait(2 * static_cast<int>(SessionTreeBox::kRest.count()));
  EXPECT_EQ(clicks.size(), 2) << "Enter does not wait, and nothing follows it";
}

TEST_F(MainWindowTest, TheRightButtonClicksTheNodeUnderItAndATickNone) {
  findThree();
  choose(MenuItem::mnuShowCheckboxesInTreeView);
  click(row(0, 0));
  const QPoint place = tree.visualRect(row(1, 0)).center();
  QContextMenuEvent press(QContextMenuEvent::Mouse, place, tree.viewport()->mapToGlobal(place));
  QCoreApplication::sendEvent(tree.viewport(), &press);
  EXPECT_TRUE(window.menus().treePopup().isVisible());
  window.menus().treePopup().hide();
  EXPECT_EQ(tree.currentIndex(), row(1, 0));
  EXPECT_EQ(commands.state().currentSession.Name, "bob");
  const QRect other = tree.visualRect(row(0, 1));
  QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, QPoint(other.left() + 8, other.center().y()));
  EXPECT_TRUE(commands.state().tree.isChecked(SessionTreeModel::nodeOf(row(0, 1))));
  EXPECT_EQ(tree.currentIndex(), row(1, 0)) << "the session shown stays the highlighted one";
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
  EXPECT_EQ(window.sessionTreePage().filter().toPlainText().count(heading), 2);
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
  EXPECT_FALSE(canChoose(MenuItem::mnuStop)) << "nothing is left to stop";
}

TEST_F(WhileScanning, AHighlightMovedMeanwhileIsShownAfterwards) {
  EXPECT_TRUE(findsUsers([] {}));
  tree.expandAll();
  QTimer::singleShot(0, &window, [this] {
    EXPECT_TRUE(commands.state().commandRunning);
    QTest::keyClick(&tree, Qt::Key_Down);
    QTest::qWait(2 * static_cast<int>(SessionTreeBox::kRest.count()));
    EXPECT_EQ(window.userInfo(), "");
  });
  dialogs.answer = folder / "out.txt";
  choose(MenuItem::mnuFilterAll);
  EXPECT_TRUE(QTest::qWaitFor([this] { return !window.userInfo().empty(); }));
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

TEST_F(MainWindowTest, TheSaveQuestionTellsWhatBecomesOfTheFile) {
  const auto existing = folder.write("out.txt", "");
  const std::pair<ExistingFile, const char*> cases[] = {{ExistingFile::AskedToReplace, "will be replaced"},
                                                        {ExistingFile::AskedToAppend, "what is in it stays"}};
  for (const auto& [kind, words] : cases) {
    QString asked;
    onDialog<QFileDialog>([&](QFileDialog& dialog) {
      onDialog<QMessageBox>([&asked](QMessageBox& question) {
        asked = question.text();
        question.button(QMessageBox::Yes)->click();
      });
      dialog.findChild<QLineEdit*>()->setText(toFileName(existing));
      QMetaObject::invokeMethod(&dialog, "accept", Qt::QueuedConnection);
    });
    const FileRequest request{.title = {}, .filter = "Text (*.txt)|*.txt", .folder = folder.path(), .existing = kind};
    EXPECT_EQ(QtFileDialogs().askSaveFile(&window, request).path, existing);
    EXPECT_TRUE(asked.contains(QString::fromLatin1(words))) << asked.toStdString();
  }
}

TEST_F(MainWindowTest, TheSplittersPlaceIsKept) {
  auto& splitter = *window.findChild<QSplitter*>();
  splitter.setSizes({300, splitter.width() - 300});
  emit splitter.splitterMoved(300, 1);
  choose(MenuItem::mnuExit);
  EXPECT_TRUE(folder.has("pages.ini"));
  const std::pair<const char*, bool> kept[] = {
      {nullptr, true}, {"x", false}, {"-1", false}, {"nan", false}, {"1e9", false}};
  for (const auto& [text, isUsed] : kept) {
    if (text != nullptr) folder.write("pages.ini", "[SessionTree]\nTreeShare=" + std::string(text) + "\n");
    MainWindow next(dialogs);
    next.connectCommands(commands);
    next.resize(window.size());
    next.show();
    EXPECT_EQ(std::abs(next.findChild<QSplitter*>()->sizes().front() - 300) <= 2, isUsed) << text;
    next.disconnectCommands();
  }
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
  const std::pair<QStringList, const char*> refused[] = {
      {{other, other}, "Only one log file at a time can be dropped here"},
      {{here}, "This is a folder; please drop the log file that lies in it"},
      {{QStringLiteral("https://example.org/a.log")}, "Only a file of this computer can be dropped here"},
      {{QStringLiteral("file:///dev/null")}, "This is not a file"}};
  for (const auto& [addresses, reason] : refused) {
    EXPECT_FALSE(drop(addresses) || commands.state().logTitle != "ftp.log");
    EXPECT_EQ(status(), reason);
  }
  EXPECT_TRUE(drop({other}));
  EXPECT_EQ(status(), "Using other.log");
}

}  // namespace
}  // namespace quorvel::test
