// The dialogs of the tools, driven with the keyboard.
#include <QCheckBox>
#include <QDesktopServices>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QUrl>

#include "app/options.h"
#include "app/program.h"
#include "app/web_commands.h"
#include "tests/qt/window_fixture.h"
#include "tests/support/answering_socket.h"
#include "ui/qt/about_dialog.h"
#include "ui/qt/computer_ip_dialog.h"
#include "ui/qt/goto_position_dialog.h"
#include "ui/qt/options_dialog.h"
#include "ui/qt/text_viewer.h"

namespace quorvel::test {
namespace {

/// Waits until the keyboard is in the dialog.
bool hasKeyboard(const QDialog& dialog) {
  return QTest::qWaitFor([&dialog] {
    const QWidget* const control = QApplication::focusWidget();
    return control != nullptr && control->window() == &dialog;
  });
}

class ToolDialogs : public WindowTest {
 protected:
  static void show(QDialog& dialog) {
    dialog.show();
    dialog.activateWindow();  // no window manager does it
    ASSERT_TRUE(hasKeyboard(dialog));
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
  const std::pair<MenuItem, const char*> dialogNames[] = {{MenuItem::mnuGotoPosition, "frmGotoPosInLog"},
                                                          {MenuItem::mnuGetComputersIP, "frmComputerIP"},
                                                          {MenuItem::mnuOptions, "frmOption"},
                                                          {MenuItem::mnuHelpCommandLineReference, "frmTextViewer"},
                                                          {MenuItem::mnuAbout, "frmAbout"}};
  for (const auto& [item, name] : dialogNames) {
    QString opened;
    onDialog<QDialog>([&](QDialog& dialog) {
      EXPECT_TRUE(hasKeyboard(dialog));
      opened = dialog.objectName();
      const QPoint off = dialog.geometry().center() - window.geometry().center();
      // Where no window manager tells the frame's size, Qt leaves 10 x 40 pixels for it.
      EXPECT_LT(off.manhattanLength(), 60) << opened.toStdString() << ' ' << off.x() << ' ' << off.y();
      press(Qt::Key_Escape);
      EXPECT_FALSE(dialog.isVisible()) << opened.toStdString();
      dialog.reject();
    });
    choose(item);
    EXPECT_EQ(opened.toStdString(), name);
  }
}

TEST_F(ToolDialogs, OptionsFollowTheKeyboard) {
  onDialog<OptionsDialog>([](OptionsDialog& dialog) {
    ASSERT_TRUE(hasKeyboard(dialog));
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
  choose(MenuItem::mnuOptions);
  EXPECT_EQ(stored("OPTION-FILTER", "FilterEntireSession"), "0");
  EXPECT_EQ(stored("OPTION-TREEVIEW", "TreeViewType"), "2");
  EXPECT_EQ(status(StatusPanel::FilterOptions), "Filter options: AT");
  EXPECT_EQ(treeHeader(), "IP\n|--Username");
}

TEST_F(ToolDialogs, EscapeLeavesTheOptionsShownUnsaved) {
  onDialog<OptionsDialog>([](OptionsDialog& dialog) {
    ASSERT_TRUE(hasKeyboard(dialog));
    press(Qt::Key_Tab);
    press(Qt::Key_Space);
    press(Qt::Key_Escape);
  });
  choose(MenuItem::mnuOptions);
  EXPECT_EQ(stored("OPTION-FILTER", "AutoFilterSession"), "1");
  EXPECT_EQ(status(StatusPanel::FilterOptions), "Filter options: A");
}

TEST_F(ToolDialogs, EnterInThePositionFieldShowsTheLogThatIsOpen) {
  std::string log(3000, 'a');
  log[2000 - 1] = 'B';
  open(folder.write("a.log", log));
  onDialog<frmGotoPosInLog>([](frmGotoPosInLog& dialog) {
    ASSERT_TRUE(hasKeyboard(dialog));
    type("2000");
    press(Qt::Key_Return);
    const std::string expected = std::string(500, 'a') + "\r\n\r\nB" + std::string(1000, 'a');
    EXPECT_EQ(results(dialog), expected);
    type("x");
    press(Qt::Key_Return);
    EXPECT_EQ(results(dialog), expected) << "no number: what is shown stays";
    const int height = find<PlainTextBox>(dialog, "rtbResult").height();
    dialog.resize(dialog.width(), dialog.height() + 100);
    runEvents();
    EXPECT_EQ(find<PlainTextBox>(dialog, "rtbResult").height(), height + 100);
    press(Qt::Key_Escape);
  });
  choose(MenuItem::mnuGotoPosition);
}

TEST_F(ToolDialogs, ComputerIpBeginsWithTheAddressOfTheSessionShown) {
  openAndFind(sessionLog(1, "10.0.0.5", "alice") + sessionLog(2, "10.0.0.6", "bob"));
  commands.TreeView1_NodeClick(2);
  dialogs.answer = folder / "out.txt";
  choose(MenuItem::mnuFilterAll);
  onDialog<frmComputerIP>([](frmComputerIP& dialog) {
    EXPECT_EQ(find<QLineEdit>(dialog, "txtHost").text(), QStringLiteral("10.0.0.5"));
    dialog.reject();
  });
  choose(MenuItem::mnuGetComputersIP);
}

TEST_F(ToolDialogs, ComputerIpResolvesAndPingsFourTimes) {
  frmComputerIP dialog(settings, "", openAnsweringSocket, nullptr);
  show(dialog);
  type("127.0.0.1");
  press(Qt::Key_Return);
  const auto& list = find<PlainTextBox>(dialog, "lstResult");
  const auto replies = [&list] { return list.toPlainText().count(QStringLiteral("Reply from 127.0.0.1: ")); };
  EXPECT_TRUE(find<QPushButton>(dialog, "cmdStop").isEnabled());
  EXPECT_TRUE(QTest::qWaitFor([&] { return replies() == Ping::kRequests; })) << list.bytes();
  EXPECT_TRUE(list.bytes().starts_with("127.0.0.1 ")) << list.bytes();
  EXPECT_FALSE(find<QPushButton>(dialog, "cmdStop").isEnabled());
}

TEST_F(ToolDialogs, ComputerIpClearsTheListOnlyWithAutoClear) {
  frmComputerIP dialog(settings, "", openAnsweringSocket, nullptr);
  show(dialog);
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

TEST_F(ToolDialogs, StopAndClosingGiveUpTheLookup) {
  frmComputerIP dialog(settings, "localhost", openAnsweringSocket, nullptr);
  show(dialog);
  press(Qt::Key_Return);
  find<QPushButton>(dialog, "cmdStop").click();
  press(Qt::Key_Return);
  press(Qt::Key_Escape);
  EXPECT_FALSE(dialog.isVisible());
  QTest::qWait(100);  // whatever was on its way has had the time to arrive
  EXPECT_EQ(results(dialog), "") << "the second lookup cleared what the first one left";
  show(dialog);
  press(Qt::Key_Return);
  find<QPushButton>(dialog, "cmdStop").click();
  QTest::qWait(100);
  EXPECT_EQ(results(dialog), "Stopped.\r\n");
}

TEST_F(ToolDialogs, EveryControlHasANameForScreenReaders) {
  frmOption form(commands.context());
  OptionsDialog options(form, nullptr);
  frmGotoPosInLog position(systemFiles(), {}, nullptr);
  frmComputerIP lookup(settings, "", openAnsweringSocket, nullptr);
  TextViewer viewer("Reference", "", nullptr);
  frmAbout about("/", nullptr);
  for (QWidget* const dialog :
       std::initializer_list<QWidget*>{&window, &options, &position, &lookup, &viewer, &about}) {
    dialog->show();
    for (const QWidget* control : dialog->findChildren<QWidget*>()) {
      if (control->focusPolicy() == Qt::NoFocus || !control->isVisible()) continue;
      const auto* const button = qobject_cast<const QAbstractButton*>(control);
      EXPECT_FALSE(control->accessibleName().isEmpty() && (button == nullptr || button->text().isEmpty()))
          << dialog->objectName().toStdString() << ' ' << control->metaObject()->className();
    }
    for (const QLabel* label : dialog->findChildren<QLabel*>())
      EXPECT_NE(label->textFormat(), Qt::RichText) << label->text().toStdString();
  }
}

/// Takes the addresses that the program hands to the desktop.
class AddressTaker : public QObject {
  Q_OBJECT

 public:
  AddressTaker() {
    for (const QString& scheme : kSchemes)
      QDesktopServices::setUrlHandler(scheme, this, "take");
  }
  ~AddressTaker() override {
    for (const QString& scheme : kSchemes)
      QDesktopServices::unsetUrlHandler(scheme);
  }
  std::vector<std::string> taken;

 public slots:
  void take(const QUrl& address) { taken.push_back(address.toString().toStdString()); }

 private:
  const QStringList kSchemes{QStringLiteral("https"), QStringLiteral("mailto")};
};

TEST_F(ToolDialogs, TheWebMenuHandsAddressesToTheDesktop) {
  const AddressTaker desktop;
  for (const MenuItem item : {MenuItem::mnuWebVisitWebsite, MenuItem::mnuWebSendEmail, MenuItem::mnuWebReportBug})
    choose(item);
  const std::vector<std::string> expected = {std::string(kWebAddress), "mailto:" + std::string(kSupportAddress),
                                             bugReportAddress()};
  EXPECT_EQ(desktop.taken, expected);
}

}  // namespace
}  // namespace quorvel::test

#include "tool_dialogs_test.moc"
