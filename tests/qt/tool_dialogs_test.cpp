// The dialogs of the tools, driven with the keyboard.
#include "classic/tools/go_to_position.h"
#include "tests/qt/window_fixture.h"
#include "tests/support/answering_socket.h"
#include "ui/qt/computer_ip_dialog.h"

namespace quorvel::test {
namespace {

/// Nothing that can have the keyboard is without a name for screen readers.
void expectNames(const QWidget& shown) {
  for (const QWidget* control : shown.findChildren<QWidget*>()) {
    if (control->focusPolicy() == Qt::NoFocus || !control->isVisible()) continue;
    const auto* const button = qobject_cast<const QAbstractButton*>(control);
    EXPECT_FALSE(control->accessibleName().isEmpty() && (button == nullptr || button->text().isEmpty()))
        << shown.objectName().toStdString() << ' ' << control->metaObject()->className();
  }
}

class ToolDialogs : public WindowTest {
 protected:
  /// To whatever has the keyboard.
  static void press(Qt::Key key, int times = 1) {
    for (int i = 0; i < times; ++i)
      QTest::keyClick(QApplication::focusWidget(), key);
  }
  static void type(const char* text) { QTest::keyClicks(QApplication::focusWidget(), QString::fromLatin1(text)); }
};

TEST_F(ToolDialogs, EveryItemOpensItsDialogAndEscapeClosesIt) {
  expectNames(window);
  const std::pair<MenuItem, const char*> dialogNames[] = {{MenuItem::mnuGotoPosition, "frmGotoPosInLog"},
                                                          {MenuItem::mnuGetComputersIP, "frmComputerIP"},
                                                          {MenuItem::mnuOptions, "frmOption"},
                                                          {MenuItem::mnuHelpCommandLineReference, "frmTextViewer"},
                                                          {MenuItem::mnuAbout, "frmAbout"}};
  for (const auto& [item, name] : dialogNames) {
    use(item, [expected = name](QDialog& dialog) {
      EXPECT_EQ(dialog.objectName().toStdString(), expected);
      expectNames(dialog);
      press(Qt::Key_Escape);
      EXPECT_FALSE(dialog.isVisible());
    });
  }
}

TEST_F(ToolDialogs, EveryWindowFitsASmallScreenWithLargeLetters) {
  const QSize screen = window.screen()->availableSize();
  if (screen.width() > 800) GTEST_SKIP() << "the screen is not small; without an X server it is";
  const QFont usual = QApplication::font();
  QFont large = usual;
  large.setPointSize(22);
  QApplication::setFont(large);
  for (const MenuItem item : {MenuItem::mnuGotoPosition, MenuItem::mnuGetComputersIP, MenuItem::mnuOptions,
                              MenuItem::mnuHelpCommandLineReference, MenuItem::mnuAbout}) {
    use(item, [screen](QDialog& dialog) {
      EXPECT_LT(dialog.height(), screen.height()) << dialog.objectName().toStdString();
      EXPECT_LE(dialog.width(), screen.width()) << dialog.objectName().toStdString();
    });
  }
  MainWindow main(dialogs);
  EXPECT_LT(main.minimumSizeHint().height(), screen.height() - large.pointSize());
  EXPECT_LT(main.minimumSizeHint().width(), screen.width());
  QApplication::setFont(usual);
}

TEST_F(ToolDialogs, OptionsFollowTheKeyboard) {
  use(MenuItem::mnuOptions, [](QDialog& dialog) {
    const auto& deletes = part<QCheckBox>(dialog, "chkOption3");
    EXPECT_TRUE(deletes.checkState() == Qt::PartiallyChecked && !deletes.isEnabled());
    press(Qt::Key_Tab, 2);
    press(Qt::Key_Space);
    EXPECT_TRUE(deletes.checkState() == Qt::Unchecked && deletes.isEnabled());
    press(Qt::Key_Tab);
    press(Qt::Key_Space);
    part<QListWidget>(dialog, "lstSelectOption").setFocus();
    press(Qt::Key_Down, 3);
    EXPECT_FALSE(deletes.isVisible());
    press(Qt::Key_Tab);
    press(Qt::Key_Down, 2);
    EXPECT_FALSE(part<QRadioButton>(dialog, "optOption0").isChecked());
    press(Qt::Key_Return);
  });
  use(MenuItem::mnuOptions, [](QDialog&) {
    press(Qt::Key_Tab);
    press(Qt::Key_Space);
    press(Qt::Key_Escape);
  });
  EXPECT_EQ(status(StatusPanel::FilterOptions), "Filter options: AT") << "a page given up is not saved";
  EXPECT_EQ(settings.ReadSetting("OPTION-TREEVIEW", "TreeViewType"), "2");
}

TEST_F(ToolDialogs, EnterInThePositionFieldShowsTheLogThatIsOpen) {
  const auto log = folder.write("a.log", std::string(1999, 'a') + 'B' + std::string(1000, 'a'));
  open(log);
  use(MenuItem::mnuGotoPosition, [&](QDialog& dialog) {
    const auto& shown = part<PlainTextBox>(dialog, "rtbResult");
    for (const char* keys : {"2000", "x"}) {  // no number any more: what is shown stays
      type(keys);
      press(Qt::Key_Return);
      EXPECT_EQ(shown.bytes(), textAroundPosition(systemFiles(), log, "2000"));
    }
  });
}

TEST_F(ToolDialogs, ComputerIpBeginsWithTheAddressOfTheSessionShown) {
  openAndFind(logSession("000001", "alice", "10.0.0.5") + logSession("000002", "bob", "10.0.0.6"));
  commands.TreeView1_NodeClick(2);
  dialogs.answer = folder / "out.txt";
  choose(MenuItem::mnuFilterAll);
  use(MenuItem::mnuGetComputersIP,
      [](QDialog& dialog) { EXPECT_EQ(part<QLineEdit>(dialog, "txtHost").text(), QStringLiteral("10.0.0.5")); });
}

/// With a network of its own.
class ComputerIp : public ToolDialogs {
 protected:
  ComputerIp() { show(); }

  void show() {
    dialog.show();
    dialog.activateWindow();  // no window manager does it
    EXPECT_TRUE(hasKeyboard(dialog));
  }

  frmComputerIP dialog{settings, "", openAnsweringSocket, nullptr};
  QPushButton& stop = part<QPushButton>(dialog, "cmdStop");
  const PlainTextBox& results = part<PlainTextBox>(dialog, "lstResult");
};

TEST_F(ComputerIp, ResolvesAndPingsFourTimes) {
  auto& field = part<QLineEdit>(dialog, "txtHost");
  EXPECT_GE(field.width(), field.fontMetrics().horizontalAdvance(QString(39, u'8'))) << "the longest address";
  type("127.0.0.1");
  press(Qt::Key_Return);
  EXPECT_TRUE(stop.isEnabled());
  EXPECT_TRUE(QTest::qWaitFor([this] { return !stop.isEnabled(); }));
  EXPECT_TRUE(results.bytes().starts_with("127.0.0.1 ")) << results.bytes();
  EXPECT_EQ(results.toPlainText().count(QStringLiteral("Reply from 127.0.0.1: ")), Ping::kRequests);
}

TEST_F(ComputerIp, ClearsTheListOnlyWithAutoClear) {
  type("no host!");
  const std::string line = "Not a computer name or IP address.\r\n";
  press(Qt::Key_Return, 2);
  EXPECT_EQ(results.bytes(), line);
  part<QCheckBox>(dialog, "chkAutoClear").setFocus();
  press(Qt::Key_Space);
  press(Qt::Key_Return);
  EXPECT_EQ(results.bytes(), line + line);
  EXPECT_FALSE(settings.readFlag("COMPUTER-IP", "AutoClear"));
}

TEST_F(ComputerIp, StopAndClosingGiveUpTheLookupAndThePing) {
  type("localhost");
  press(Qt::Key_Return);
  stop.click();
  press(Qt::Key_Return);
  press(Qt::Key_Escape);
  EXPECT_FALSE(dialog.isVisible());
  QTest::qWait(100);  // whatever was on its way has had the time to arrive
  EXPECT_EQ(results.bytes(), "") << "the second lookup cleared what the first one left";
  show();
  press(Qt::Key_Return);
  EXPECT_TRUE(QTest::qWaitFor([this] { return results.bytes().find("Reply") != std::string::npos; }));
  stop.click();
  QTest::qWait(300);  // more than there is between two pings
  EXPECT_TRUE(results.bytes().ends_with("Stopped.\r\n")) << results.bytes();
}

}  // namespace
}  // namespace quorvel::test
