// Texts that strangers choose, everywhere the window shows them: nothing is interpreted, so nothing can be fetched.
#include <QAbstractButton>
#include <QAction>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTextDocument>

#include "tests/qt/window_fixture.h"
#include "ui/qt/text.h"

namespace quorvel::test {
namespace {

/// Twice as name and address, each has room in a record.
const std::string kHostileTexts[] = {"<img/src='//x'>",
                                     "<b>",
                                     "<a/href=file:/x>",
                                     "&lt;i&gt;&copy;",
                                     "[*]&File",
                                     "\x1B]0;t\x07\x1B[31m",
                                     "\x80\x81\x8D\x9B\xFF\x7F",
                                     "../../etc/passwd",
                                     "C:\\con|/dev/null",
                                     "$(id)`id`;id|id&",
                                     "%s%n%1%2%L1!"};

const char* const kHostileFileNames[] = {"<img src='x.png'>.log",  "&lt;b&gt;[*].log",   "\u202Egol.exe",
                                         "a\nb\r\x1B]0;t\x07.log", "\u2066x\u2029y.log", "$(id)`id`;&.log"};

bool canMislead(const QString& text) {
  return text != withoutDirectionMarks(text) || text != toOneLine(text);
}

/// Looks at everything that could show a text as something else.
void expectNothingInterpreted() {
  for (const QWidget* widget : QApplication::allWidgets()) {
    SCOPED_TRACE(widget->metaObject()->className() + (" " + widget->objectName()).toStdString());
    for (const QString& text : {widget->toolTip(), widget->whatsThis(), widget->statusTip()})
      EXPECT_FALSE(Qt::mightBeRichText(text)) << text.toStdString();
    if (widget->isWindow()) {
      EXPECT_FALSE(canMislead(widget->windowTitle())) << widget->windowTitle().toStdString();
      EXPECT_FALSE(widget->windowTitle().remove(QStringLiteral("[*][*]")).contains(QStringLiteral("[*]")));
    }
    const auto* const label = qobject_cast<const QLabel*>(widget);
    if (label == nullptr) continue;
    EXPECT_NE(label->textFormat(), Qt::RichText);
    EXPECT_FALSE(label->textFormat() != Qt::PlainText && Qt::mightBeRichText(label->text()))
        << label->text().toStdString();
    // Of what it takes for rich text, a label makes a document, which loads what the text refers to.
    EXPECT_TRUE(label->findChildren<QTextDocument*>().isEmpty() || label->textFormat() == Qt::PlainText);
  }
}

class HostileText : public WindowTest {
 protected:
  HostileText() {
    settings.WriteSetting("MAIN", "TrunkLongUsernames", "0");
    settings.WriteSetting("OPTION-COUNTER", "GetFilenameOnTransferError", "1");
  }
  /// Looks at the dialog that the action opens, and closes it.
  void lookAtDialog(const std::function<void()>& open) {
    bool isOpened = false;
    onDialog<QDialog>([&isOpened](QDialog& dialog) {
      isOpened = true;
      expectNothingInterpreted();
      dialog.reject();
    });
    open();
    EXPECT_TRUE(isOpened);
  }
  void expectTreeShows(const std::string& text) {
    const QAbstractItemModel& model = *window.panes().tree().model();
    for (const QModelIndex& node : {model.index(0, 0), model.index(0, 0, model.index(0, 0))})
      for (const int role : {Qt::ToolTipRole, Qt::StatusTipRole, Qt::WhatsThisRole, Qt::DecorationRole})
        EXPECT_FALSE(node.data(role).isValid());
    EXPECT_EQ(model.index(0, 0).data().toString(), toOneLine(toQString(text)));
  }
};

TEST_F(HostileText, NamesAndAddressesAreShownAsTheyStand) {
  for (const std::string& text : kHostileTexts) {
    SCOPED_TRACE(text);
    for (const char* layout : {"0", "2"}) {
      settings.WriteSetting("OPTION-TREEVIEW", "TreeViewType", layout);
      openAndFind(sessionLog(1, text, text, "Error sending file " + text));
      expectTreeShows(text);
    }
    commands.TreeView1_NodeClick(2);
    EXPECT_EQ(commands.state().currentSession.Name, text);
    EXPECT_TRUE(window.userInfo().starts_with("Username:   " + text + "\r\nFrom IP:    " + text + "\r\n"));
    EXPECT_TRUE(window.panes().filter().toPlainText().contains(toQString("USER " + text)));
    expectNothingInterpreted();
    for (const MenuItem item : {MenuItem::mnuCountUsersTransfers, MenuItem::mnuCountIPTransfers, MenuItem::mnuOptions,
                                MenuItem::mnuGotoPosition, MenuItem::mnuAbout})
      lookAtDialog([this, item] { choose(item); });
    onDialog<QDialog>([](QDialog& dialog) {
      EXPECT_EQ(dialog.findChild<QLineEdit*>()->text(), QString()) << "no host, never looked up";
      dialog.reject();
    });
    choose(MenuItem::mnuGetComputersIP);
    dialogs.answer = folder / "out.txt";
    choose(MenuItem::mnuFilterUser);
    choose(MenuItem::mnuFilterIP);
    EXPECT_NE(folder.read("out.txt").find("Username:          " + text + "\r\n"), std::string::npos);
    std::filesystem::remove(folder / "out.txt");
  }
}

TEST_F(HostileText, FileNamesAreShownAsTheyStand) {
  for (const char* name : kHostileFileNames) {
    SCOPED_TRACE(name);
    open(folder.write(name, sessionLog(1, "10.0.0.5", "alice")));
    expectNothingInterpreted();
    EXPECT_FALSE(canMislead(window.statusText(StatusPanel::Text))) << status();
    choose(MenuItem::mnuFindUsers);
    EXPECT_EQ(status(StatusPanel::Logons), "Logons: 1");
    std::filesystem::remove(folder / name);
    lookAtDialog([this] { choose(MenuItem::mnuFindUsers); });
    dialogs.answer = folder / name / "out.txt";  // in a folder that is not there
    lookAtDialog([this] { choose(MenuItem::mnuFilterAll); });
  }
}

TEST_F(HostileText, FileDialogsShowFileNamesAsTheyStand) {
  QtFileDialogs real;
  const std::filesystem::path name = folder / "<img src='x.png'>.txt";
  // Types the name into the file dialog, which then asks something: whether to overwrite, or, of a missing file, why.
  const auto type = [this, &name](bool overwrites) {
    onDialog<QFileDialog>([this, &name, overwrites](QFileDialog& dialog) {
      expectNothingInterpreted();
      dialog.findChild<QLineEdit*>()->setText(toFileName(name));
      QMetaObject::invokeMethod(&dialog, "accept", Qt::QueuedConnection);
      onDialog<QMessageBox>([&dialog, overwrites](QMessageBox& box) {
        expectNothingInterpreted();
        if (overwrites) return box.button(QMessageBox::Yes)->click();
        QMetaObject::invokeMethod(&dialog, "reject", Qt::QueuedConnection);
        box.reject();
      });
    });
  };
  FileRequest request{"<b>Save[*]", "Text (*.txt)|*.txt", 1, folder.path(), true, false};
  type(false);
  EXPECT_EQ(real.askOpenFile(&window, request).outcome, FileChoice::Outcome::Cancelled);
  folder.write(name.filename().string(), "");
  request.asksBeforeOverwriting = true;
  type(true);
  EXPECT_EQ(real.askSaveFile(&window, request).path, name);
}

TEST_F(HostileText, TenMegabytesOfANameAreNoName) {
  constexpr std::size_t kSize = 10'000'000;
  QElapsedTimer time;
  time.start();
  for (const char* cut : {"0", "1"}) {
    settings.WriteSetting("MAIN", "TrunkLongUsernames", cut);
    const std::string name(kSize, 'n');
    lookAtDialog([&] {  // what has no room in a record is told
      openAndFind(sessionLog(1, name, "alice") + sessionLog(2, "10.0.0.5", name) + sessionLog(3, "10.0.0.5", "bob"));
    });
    EXPECT_EQ(status(StatusPanel::Logons), "Logons: 3");
    EXPECT_EQ(window.panes().tree().model()->rowCount(), *cut == '0' ? 1 : 2);
    EXPECT_LT(folder.read("error.log").size(), 20'000u);
    std::filesystem::remove(folder / "error.log");
  }
  EXPECT_LT(time.elapsed(), 20'000);
}

}  // namespace
}  // namespace quorvel::test
