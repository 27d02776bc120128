// The dialogs of the tools, driven with the keyboard.
#include <QCheckBox>
#include <QDesktopServices>
#include <QGroupBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTest>
#include <QTextBrowser>
#include <QUrl>

#include "app/web_commands.h"
#include "tests/qt/window_fixture.h"
#include "tests/support/answering_socket.h"
#include "tools/go_to_position.h"
#include "ui/qt/computer_ip_dialog.h"

namespace quorvel::test {
namespace {

/// Waits until the keyboard is in the dialog.
bool hasKeyboard(const QDialog& dialog) {
  return QTest::qWaitFor([&dialog] {
    const QWidget* const control = QApplication::focusWidget();
    return control != nullptr && control->window() == &dialog;
  });
}

/// Nothing that can have the keyboard is without a name for screen readers, no label shows a text as something else.
void expectNamesAndPlainLabels(const QWidget& shown) {
  for (const QWidget* control : shown.findChildren<QWidget*>()) {
    if (control->focusPolicy() == Qt::NoFocus || !control->isVisible()) continue;
    const auto* const button = qobject_cast<const QAbstractButton*>(control);
    EXPECT_FALSE(control->accessibleName().isEmpty() && (button == nullptr || button->text().isEmpty()))
        << shown.objectName().toStdString() << ' ' << control->metaObject()->className();
  }
  for (const QLabel* label : shown.findChildren<QLabel*>())
    EXPECT_NE(label->textFormat(), Qt::RichText) << label->text().toStdString();
}

class ToolDialogs : public WindowTest {
 protected:
  /// Works with the dialog that the item opens, once it has the keyboard.
  void use(MenuItem item, const std::function<void(QDialog&)>& work) {
    bool isOpened = false;
    onDialog<QDialog>([&](QDialog& dialog) {
      isOpened = hasKeyboard(dialog);
      if (isOpened) work(dialog);
      if (dialog.isVisible()) dialog.reject();
    });
    choose(item);
    EXPECT_TRUE(isOpened);
  }
  /// To whatever has the keyboard.
  static void press(Qt::Key key, int times = 1) {
    for (int i = 0; i < times; ++i)
      QTest::keyClick(QApplication::focusWidget(), key);
  }
  static void type(const char* text) { QTest::keyClicks(QApplication::focusWidget(), QString::fromLatin1(text)); }
  template <typename T>
  static T& find(QDialog& dialog, const char* name) {
    T* const control = dialog.findChild<T*>(QString::fromLatin1(name));
    if (control == nullptr) throw std::runtime_error(name);
    return *control;
  }
  static const std::string& results(QDialog& dialog) { return dialog.findChild<PlainTextBox*>()->bytes(); }
  [[nodiscard]] std::string stored(const char* section, const char* key) const {
    return settings.ReadSetting(section, key);
  }
};

TEST_F(ToolDialogs, EveryItemOpensItsDialogInTheMiddleOfTheWindowAndEscapeClosesIt) {
  window.setGeometry(20, 40, 760, 720);  // of a screen of 800 x 800
  expectNamesAndPlainLabels(window);
  const std::pair<MenuItem, const char*> dialogNames[] = {{MenuItem::mnuGotoPosition, "frmGotoPosInLog"},
                                                          {MenuItem::mnuGetComputersIP, "frmComputerIP"},
                                                          {MenuItem::mnuOptions, "frmOption"},
                                                          {MenuItem::mnuHelpCommandLineReference, "frmTextViewer"},
                                                          {MenuItem::mnuAbout, "frmAbout"}};
  for (const auto& [item, name] : dialogNames) {
    SCOPED_TRACE(name);
    use(item, [&, expected = name](QDialog& dialog) {
      EXPECT_EQ(dialog.objectName().toStdString(), expected);
      const QPoint off = dialog.geometry().center() - window.geometry().center();
      // Where no window manager tells the frame's size, Qt leaves 10 x 40 pixels for it.
      EXPECT_LT(off.manhattanLength(), 60) << off.x() << ' ' << off.y();
      expectNamesAndPlainLabels(dialog);
      press(Qt::Key_Escape);
      EXPECT_FALSE(dialog.isVisible());
    });
  }
}

TEST_F(ToolDialogs, OptionsFollowTheKeyboard) {
  use(MenuItem::mnuOptions, [](QDialog& dialog) {
    const auto& deletes = find<QCheckBox>(dialog, "chkOption3");
    EXPECT_EQ(deletes.checkState(), Qt::PartiallyChecked);
    EXPECT_FALSE(deletes.isEnabled());
    press(Qt::Key_Tab, 2);
    press(Qt::Key_Space);
    EXPECT_EQ(deletes.checkState(), Qt::Unchecked);
    EXPECT_TRUE(deletes.isEnabled());
    press(Qt::Key_Tab);
    press(Qt::Key_Space);
    find<QListWidget>(dialog, "lstSelectOption").setFocus();
    press(Qt::Key_Down, 3);
    EXPECT_FALSE(deletes.isVisible());
    EXPECT_EQ(dialog.findChild<QGroupBox*>()->title(), QStringLiteral("TreeView options"));
    press(Qt::Key_Tab);
    press(Qt::Key_Down, 2);
    EXPECT_FALSE(find<QRadioButton>(dialog, "optOption0").isChecked());
    press(Qt::Key_Return);
  });
  use(MenuItem::mnuOptions, [](QDialog&) {  // given up, a page is not saved
    press(Qt::Key_Tab);
    press(Qt::Key_Space);
    press(Qt::Key_Escape);
  });
  EXPECT_EQ(stored("OPTION-FILTER", "AutoFilterSession") + stored("OPTION-FILTER", "FilterEntireSession"), "10");
  EXPECT_EQ(stored("OPTION-TREEVIEW", "TreeViewType"), "2");
  EXPECT_EQ(status(StatusPanel::FilterOptions), "Filter options: AT");
  EXPECT_EQ(treeHeader(), "IP\n|--Username");
}

TEST_F(ToolDialogs, EnterInThePositionFieldShowsTheLogThatIsOpen) {
  const auto log = folder.write("a.log", std::string(1999, 'a') + 'B' + std::string(1000, 'a'));
  open(log);
  use(MenuItem::mnuGotoPosition, [&](QDialog& dialog) {
    const auto expected = textAroundPosition(systemFiles(), log, "2000");
    for (const char* keys : {"2000", "x"}) {  // no number any more: what is shown stays
      type(keys);
      press(Qt::Key_Return);
      EXPECT_EQ(results(dialog), expected);
    }
    const int height = find<PlainTextBox>(dialog, "rtbResult").height();
    dialog.resize(dialog.width(), dialog.height() + 100);
    runEvents();
    EXPECT_EQ(find<PlainTextBox>(dialog, "rtbResult").height(), height + 100);
  });
}

TEST_F(ToolDialogs, ComputerIpBeginsWithTheAddressOfTheSessionShown) {
  openAndFind(sessionLog(1, "10.0.0.5", "alice") + sessionLog(2, "10.0.0.6", "bob"));
  commands.TreeView1_NodeClick(2);
  dialogs.answer = folder / "out.txt";
  choose(MenuItem::mnuFilterAll);
  use(MenuItem::mnuGetComputersIP,
      [](QDialog& dialog) { EXPECT_EQ(find<QLineEdit>(dialog, "txtHost").text(), QStringLiteral("10.0.0.5")); });
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
  QPushButton& stop() { return find<QPushButton>(dialog, "cmdStop"); }

  frmComputerIP dialog{settings, "", openAnsweringSocket, nullptr};
};

TEST_F(ComputerIp, ResolvesAndPingsFourTimes) {
  type("127.0.0.1");
  press(Qt::Key_Return);
  EXPECT_TRUE(stop().isEnabled());
  const auto& list = find<PlainTextBox>(dialog, "lstResult");
  const auto replies = [&list] { return list.toPlainText().count(QStringLiteral("Reply from 127.0.0.1: ")); };
  EXPECT_TRUE(QTest::qWaitFor([&] { return replies() == Ping::kRequests; })) << list.bytes();
  EXPECT_TRUE(list.bytes().starts_with("127.0.0.1 ")) << list.bytes();
  EXPECT_FALSE(stop().isEnabled());
}

TEST_F(ComputerIp, ClearsTheListOnlyWithAutoClear) {
  type("no host!");
  const std::string line = "Not a computer name or IP address.\r\n";
  press(Qt::Key_Return, 2);
  EXPECT_EQ(results(dialog), line);
  find<QCheckBox>(dialog, "chkAutoClear").setFocus();
  press(Qt::Key_Space);
  EXPECT_EQ(stored("COMPUTER-IP", "AutoClear"), "0");
  press(Qt::Key_Return);
  EXPECT_EQ(results(dialog), line + line);
}

TEST_F(ComputerIp, StopAndClosingGiveUpTheLookup) {
  type("localhost");
  press(Qt::Key_Return);
  stop().click();
  press(Qt::Key_Return);
  press(Qt::Key_Escape);
  EXPECT_FALSE(dialog.isVisible());
  QTest::qWait(100);  // whatever was on its way has had the time to arrive
  EXPECT_EQ(results(dialog), "") << "the second lookup cleared what the first one left";
  show();
  press(Qt::Key_Return);
  stop().click();
  QTest::qWait(100);
  EXPECT_EQ(results(dialog), "Stopped.\r\n");
}

TEST_F(ToolDialogs, TheWebMenuHandsAddressesToTheDesktop) {
  QTextBrowser desktop;  // anything with a signal that takes an address
  const QSignalSpy taken(&desktop, &QTextBrowser::anchorClicked);
  const QString schemes[] = {QStringLiteral("https"), QStringLiteral("mailto")};
  for (const QString& scheme : schemes)
    QDesktopServices::setUrlHandler(scheme, &desktop, "anchorClicked");
  choose(MenuItem::mnuWebVisitWebsite);
  choose(MenuItem::mnuWebReportBug);
  for (const QString& scheme : schemes)
    QDesktopServices::unsetUrlHandler(scheme);
  ASSERT_EQ(taken.size(), 2);
  EXPECT_EQ(taken[0][0].toUrl().toString().toStdString(), "https://quorvel.example.org/");
  EXPECT_EQ(taken[1][0].toUrl().toString().toStdString(), bugReportAddress());
}

}  // namespace
}  // namespace quorvel::test
