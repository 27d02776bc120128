// Texts that strangers choose, everywhere the window shows them: nothing is interpreted, so nothing can be fetched.
#include <QAbstractButton>
#include <QAction>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTextDocument>

#include "tests/qt/window_fixture.h"
#include "ui/qt/text.h"

namespace quorvel::test {
namespace {

/// Words of which each has room in a record as name and address.
constexpr const char* kHostileTexts =
    "<img/src='//x'> <b> <a/href=file:/x> &lt;i&gt;&copy; [*]&File \x1B]0;t\x07\x1B[31m \x80\x81\x8D\x9B\xFF\x7F "
    "../../etc/passwd C:\\con|/dev/null $(id)`id`;id|id& %s%n%1%2%L1!";

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
    QString title = widget->isWindow() ? widget->windowTitle() : QString();
    EXPECT_FALSE(canMislead(title)) << title.toStdString();
    EXPECT_FALSE(title.remove(QStringLiteral("[*][*]")).contains(QStringLiteral("[*]"))) << title.toStdString();
    const auto* const label = qobject_cast<const QLabel*>(widget);
    if (label == nullptr || label->textFormat() == Qt::PlainText) continue;
    EXPECT_EQ(label->textFormat(), Qt::AutoText);
    EXPECT_FALSE(Qt::mightBeRichText(label->text())) << label->text().toStdString();
    // Of what it takes for rich text, a label makes a document, which loads what the text refers to.
    EXPECT_TRUE(label->findChildren<QTextDocument*>().isEmpty());
  }
}

class HostileText : public WindowTest {
 protected:
  HostileText() {
    settings.WriteSetting("MAIN", "TrunkLongUsernames", "0");
    settings.WriteSetting("OPTION-COUNTER", "GetFilenameOnTransferError", "1");
  }
  /// Looks at the dialog that the menu item opens.
  void lookAtDialog(MenuItem item) {
    use(item, [item](QDialog& dialog) {
      expectNothingInterpreted();
      for (const QLineEdit* field : dialog.findChildren<QLineEdit*>())
        EXPECT_TRUE(item != MenuItem::mnuGetComputersIP || field->text().isEmpty()) << "no host, never looked up";
    });
  }
};

TEST_F(HostileText, NamesAndAddressesAreShownAsTheyStand) {
  std::istringstream texts(kHostileTexts);
  for (std::string text; texts >> text;) {
    SCOPED_TRACE(text);
    for (const char* layout : {"0", "2"}) {
      settings.WriteSetting("OPTION-TREEVIEW", "TreeViewType", layout);
      openAndFind(logSession("000001", text, text, "Error sending file " + text));
      EXPECT_EQ(row(0).data().toString(), toOneLine(toQString(text)));
      EXPECT_EQ(tree.model()->itemData(row(0)).size(), 1) << "no tool tip, no picture";
    }
    commands.TreeView1_NodeClick(2);
    EXPECT_EQ(commands.state().currentSession.Name, text);
    EXPECT_TRUE(window.userInfo().starts_with("Username:   " + text + "\r\nFrom IP:    " + text + "\r\n"));
    EXPECT_TRUE(window.sessionTreePage().filter().toPlainText().contains(toQString("USER " + text)));
    expectNothingInterpreted();
    for (const MenuItem item : {MenuItem::mnuCountUsersTransfers, MenuItem::mnuCountIPTransfers, MenuItem::mnuOptions,
                                MenuItem::mnuGotoPosition, MenuItem::mnuGetComputersIP, MenuItem::mnuAbout})
      lookAtDialog(item);
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
    open(folder.write(name, logSession("000001", "alice", "10.0.0.5")));
    expectNothingInterpreted();
    EXPECT_FALSE(canMislead(window.statusText(StatusPanel::Text))) << status();
    choose(MenuItem::mnuFindUsers);
    EXPECT_EQ(status(StatusPanel::Logons), "Logons: 1");
    std::filesystem::remove(folder / name);
    lookAtDialog(MenuItem::mnuFindUsers);
    dialogs.answer = folder / name / "out.txt";  // in a folder that is not there
    lookAtDialog(MenuItem::mnuFilterAll);
  }
}

TEST_F(HostileText, FileDialogsShowFileNamesAsTheyStand) {
  QtFileDialogs real;
  const std::filesystem::path name = folder / "<img src='x.png'>.txt";
  // Types the name into the file dialog, which then asks something: whether to overwrite, or, of a missing file, why.
  const auto type = [&] {
    onDialog<QFileDialog>([&](QFileDialog& dialog) {
      expectNothingInterpreted();
      dialog.findChild<QLineEdit*>()->setText(toFileName(name));
      QMetaObject::invokeMethod(&dialog, "accept", Qt::QueuedConnection);
      onDialog<QMessageBox>([&dialog](QMessageBox& box) {
        expectNothingInterpreted();
        QMetaObject::invokeMethod(&dialog, "reject", Qt::QueuedConnection);
        box.buttons().constFirst()->click();
      });
    });
  };
  const FileRequest request{"<b>Save[*]", "Text (*.txt)|*.txt", 1, folder.path(), true, ExistingFile::AskedToReplace};
  type();
  EXPECT_EQ(real.askOpenFile(&window, request).outcome, FileChoice::Outcome::Cancelled);
  folder.write(name.filename().string(), "");
  type();
  EXPECT_EQ(real.askSaveFile(&window, request).path, name);
}

}  // namespace
}  // namespace quorvel::test
