// The dialogs of the tools, driven with the keyboard.
#include <gtest/gtest.h>

#include <QApplication>
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
#include "tests/support/recording_view.h"
#include "tests/support/temp_folder.h"
#include "ui/qt/about_dialog.h"
#include "ui/qt/computer_ip_dialog.h"
#include "ui/qt/goto_position_dialog.h"
#include "ui/qt/options_dialog.h"
#include "ui/qt/plain_text_box.h"
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

class ToolDialogs : public ::testing::Test {
 protected:
  ToolDialogs() {
    settings.prepareFile();
    settings.resetOtherVersion();
    state.programFolder = folder.path();
  }

  static void show(QDialog& dialog) {
    dialog.show();
    dialog.activateWindow();  // no window manager does it
    ASSERT_TRUE(hasKeyboard(dialog));
  }
  /// To whatever has the keyboard.
  static void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
  static void type(const char* text) { QTest::keyClicks(QApplication::focusWidget(), QString::fromLatin1(text)); }
  template <typename T>
  static T& find(QDialog& dialog, const char* name) {
    T* const control = dialog.findChild<T*>(QString::fromLatin1(name));
    if (control == nullptr) throw std::runtime_error(name);
    return *control;
  }
  std::string stored(const char* section, const char* key) const { return settings.ReadSetting(section, key); }

  TempFolder folder;
  Settings settings{systemFiles(), folder.path()};
  MainWindowState state;
  RecordingView view;
  Pacer pacer;
  CommandContext context{systemFiles(), settings, state, view, pacer};
  frmOption form{context};
};

TEST_F(ToolDialogs, OptionsFollowTheKeyboard) {
  OptionsDialog dialog(form, nullptr);
  show(dialog);
  const auto& deletes = find<QCheckBox>(dialog, "chkOption3");
  EXPECT_EQ(deletes.checkState(), Qt::PartiallyChecked);
  EXPECT_FALSE(deletes.isEnabled());
  press(Qt::Key_Tab);
  press(Qt::Key_Tab);
  press(Qt::Key_Space);
  EXPECT_EQ(deletes.checkState(), Qt::Unchecked);
  EXPECT_TRUE(deletes.isEnabled());
  find<QListWidget>(dialog, "lstSelectOption").setFocus();
  for (int i = 0; i < 3; ++i)
    press(Qt::Key_Down);
  EXPECT_FALSE(deletes.isVisible());
  EXPECT_EQ(dialog.findChild<QGroupBox*>()->title(), QStringLiteral("TreeView options"));
  press(Qt::Key_Tab);
  for (int i = 0; i < 2; ++i)
    press(Qt::Key_Down);
  EXPECT_FALSE(find<QRadioButton>(dialog, "optOption0").isChecked());
  press(Qt::Key_Return);
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
  form.cmdOK_Click();
  EXPECT_EQ(stored("OPTION-FILTER", "FilterEntireSession"), "0");
  EXPECT_EQ(stored("OPTION-TREEVIEW", "TreeViewType"), "2");
}

TEST_F(ToolDialogs, EscapeLeavesTheOptionsShownUnsaved) {
  OptionsDialog dialog(form, nullptr);
  show(dialog);
  press(Qt::Key_Tab);
  press(Qt::Key_Space);
  press(Qt::Key_Escape);
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_EQ(dialog.result(), QDialog::Rejected);
  EXPECT_EQ(stored("OPTION-FILTER", "AutoFilterSession"), "1");
}

TEST_F(ToolDialogs, EnterInThePositionFieldFinds) {
  std::string log(3000, 'a');
  log[2000 - 1] = 'B';
  frmGotoPosInLog dialog(systemFiles(), folder.write("a.log", log), nullptr);
  show(dialog);
  type("2000");
  press(Qt::Key_Return);
  const auto& result = find<PlainTextBox>(dialog, "rtbResult");
  const std::string expected = std::string(500, 'a') + "\r\n\r\nB" + std::string(1000, 'a');
  EXPECT_EQ(result.bytes(), expected);
  type("x");
  press(Qt::Key_Return);
  EXPECT_EQ(result.bytes(), expected) << "no number: what is shown stays";
  EXPECT_TRUE(dialog.isVisible());
  const int height = result.height();
  dialog.resize(dialog.width(), dialog.height() + 100);
  QApplication::processEvents();
  EXPECT_EQ(result.height(), height + 100);
  press(Qt::Key_Escape);
  EXPECT_FALSE(dialog.isVisible());
}

TEST_F(ToolDialogs, ComputerIpResolvesAndPingsFourTimes) {
  frmComputerIP dialog(settings, "", openAnsweringSocket, nullptr);
  show(dialog);
  type("127.0.0.1");
  press(Qt::Key_Return);
  const auto& list = find<PlainTextBox>(dialog, "lstResult");
  const auto replies = [&list] { return list.toPlainText().count(QStringLiteral("Reply from 127.0.0.1: ")); };
  EXPECT_TRUE(QTest::qWaitFor([&] { return replies() == Ping::kRequests; })) << list.bytes();
  EXPECT_TRUE(list.bytes().starts_with("127.0.0.1 ")) << list.bytes();
}

TEST_F(ToolDialogs, ComputerIpClearsTheListOnlyWithAutoClear) {
  frmComputerIP dialog(
      settings, "",
      [](const std::string&) {
        return IcmpOpening{nullptr, "refused"};
      },
      nullptr);
  show(dialog);
  const auto& list = find<PlainTextBox>(dialog, "lstResult");
  type("no host!");
  const std::string line = "Not a computer name or IP address.\r\n";
  press(Qt::Key_Return);
  press(Qt::Key_Return);
  EXPECT_EQ(list.bytes(), line);
  find<QCheckBox>(dialog, "chkAutoClear").setFocus();
  press(Qt::Key_Space);
  EXPECT_EQ(stored("COMPUTER-IP", "AutoClear"), "0");
  press(Qt::Key_Return);
  EXPECT_EQ(list.bytes(), line + line);
}

TEST_F(ToolDialogs, ClosingGivesUpTheLookup) {
  frmComputerIP dialog(settings, "localhost", openAnsweringSocket, nullptr);
  show(dialog);
  press(Qt::Key_Return);
  press(Qt::Key_Escape);
  EXPECT_FALSE(dialog.isVisible());
  QTest::qWait(100);  // whatever was on its way has had the time to arrive
  EXPECT_EQ(find<PlainTextBox>(dialog, "lstResult").bytes(), "");
}

TEST_F(ToolDialogs, TextsAreShownAsTheyStand) {
  TextViewer viewer("Reference", "<b>bold</b>\r\n&amp;", nullptr);
  show(viewer);
  EXPECT_EQ(viewer.findChild<PlainTextBox*>()->toPlainText(), QStringLiteral("<b>bold</b>\n&amp;"));
  press(Qt::Key_Escape);
  EXPECT_FALSE(viewer.isVisible());
  frmAbout about("/<i>folder</i>", nullptr);
  show(about);
  bool showsFolder = false;
  for (const QLineEdit* field : about.findChildren<QLineEdit*>())
    showsFolder = showsFolder || field->text() == QStringLiteral("/<i>folder</i>");
  EXPECT_TRUE(showsFolder);
  press(Qt::Key_Escape);
  EXPECT_FALSE(about.isVisible());
}

TEST_F(ToolDialogs, EveryControlHasANameForScreenReaders) {
  OptionsDialog options(form, nullptr);
  frmGotoPosInLog position(systemFiles(), {}, nullptr);
  frmComputerIP lookup(settings, "", openAnsweringSocket, nullptr);
  TextViewer viewer("Reference", "", nullptr);
  frmAbout about("/", nullptr);
  for (QDialog* const dialog : std::initializer_list<QDialog*>{&options, &position, &lookup, &viewer, &about}) {
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
  QStringList taken;

 public slots:
  void take(const QUrl& address) { taken.append(address.toString()); }

 private:
  const QStringList kSchemes{QStringLiteral("https"), QStringLiteral("mailto")};
};

using ToolMenu = WindowTest;

TEST_F(ToolMenu, EveryToolOpensItsDialogInTheMiddleOfTheWindow) {
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
      EXPECT_LT(off.manhattanLength(), 60) << name << ' ' << off.x() << ' ' << off.y();
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
      EXPECT_FALSE(dialog.isVisible()) << name;
      dialog.reject();
    });
    choose(item);
    EXPECT_EQ(opened.toStdString(), name);
  }
}

TEST_F(ToolMenu, OkInTheOptionsReachesTheMainWindow) {
  onDialog<OptionsDialog>([](OptionsDialog& dialog) {
    dialog.findChild<QCheckBox*>(QStringLiteral("chkOption0"))->click();
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  const std::string before = status(StatusPanel::FilterOptions);
  choose(MenuItem::mnuOptions);
  EXPECT_NE(status(StatusPanel::FilterOptions), before);
}

TEST_F(ToolMenu, GoToPositionReadsTheLogThatIsOpen) {
  open(folder.write("ftp.log", std::string(2000, 'a')));
  std::string shown;
  onDialog<frmGotoPosInLog>([&shown](frmGotoPosInLog& dialog) {
    EXPECT_TRUE(hasKeyboard(dialog));
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("1500"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    shown = dialog.findChild<PlainTextBox*>()->bytes();
    dialog.reject();
  });
  choose(MenuItem::mnuGotoPosition);
  EXPECT_EQ(shown, std::string(500, 'a') + "\r\n\r\n" + std::string(501, 'a'));
}

TEST_F(ToolMenu, TheWebMenuHandsAddressesToTheDesktop) {
  AddressTaker desktop;
  choose(MenuItem::mnuWebVisitWebsite);
  choose(MenuItem::mnuWebSendEmail);
  choose(MenuItem::mnuWebReportBug);
  ASSERT_EQ(desktop.taken.size(), 3);
  EXPECT_EQ(desktop.taken[0].toStdString(), kWebAddress);
  EXPECT_EQ(desktop.taken[1].toStdString(), "mailto:" + std::string(kSupportAddress));
  EXPECT_EQ(desktop.taken[2].toStdString(), bugReportAddress());
}

}  // namespace
}  // namespace quorvel::test

#include "tool_dialogs_test.moc"
