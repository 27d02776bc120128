// The window's parts one by one.
#include <gtest/gtest.h>

#include <QtWidgets>
#include <tuple>

#include "tests/support/script.h"
#include "ui/qt/file_dialogs.h"
#include "ui/qt/menus.h"
#include "ui/qt/plain_message.h"
#include "ui/qt/plain_text_box.h"
#include "ui/qt/print_pages.h"
#include "ui/qt/progress_row.h"
#include "ui/qt/text.h"
#include "ui/qt/window_placement.h"

namespace quorvel::test {
namespace {

using namespace std::string_literals;

TEST(Text, EveryByteIsOneCharacterAndComesBack) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte)
    all += static_cast<char>(byte);
  const QString text = toQString(all);
  EXPECT_EQ(text.size(), 256);
  EXPECT_EQ(QString(text[0x80]) + text[0x81] + text[0xE4], QStringLiteral("\u20ac\u0081\u00e4"));
  EXPECT_EQ(toBytes(text), all);
  EXPECT_EQ(toBytes(QStringLiteral("a\u65e5\u20ac")), "a?\x80") << "not in the code page";
  EXPECT_EQ(toOneLine(toQString("a\r\nb\x1b[31m\x7f")), QStringLiteral("a\u240d\u240ab\u241b[31m\u2421"));
  EXPECT_EQ(toTitle("x[*]\n"), QStringLiteral("x[*][*]\u240a")) << "no mark of a modified document";
}

TEST(PlainTextBox, KeepsItsBytesAndShowsTheirLinesWhereverThePiecesAreCut) {
  const std::string text = "a\r\n<b>\0\x81\nc\rd\r\n\r\n\n\re\r"s;
  PlainTextBox box;
  for (std::size_t cut = 0; cut <= text.size(); ++cut) {
    box.setBytes(text.substr(0, cut));
    box.appendBytes(text.substr(cut));
    EXPECT_EQ(box.toPlainText(), QStringLiteral("a\n<b>\0\u0081\nc\nd\n\n\n\ne")) << cut;
    EXPECT_EQ(box.bytes(), text);
  }
  box.setBytes(box.bytes());
  EXPECT_EQ(box.bytes(), text) << "given a view of its own bytes";
  const QString full(ShownLines::kLongestLine, u'x');
  box.setBytes("line\r\n" + std::string(10'001, 'x'));
  box.appendBytes(std::string(10'001, 'x'));
  EXPECT_EQ(box.toPlainText(), QStringLiteral("line\n") + full + u'\n' + full + QStringLiteral("\nxx")) << "broken";
}

TEST(PlainTextBox, AppendingKeepsTheSelection) {
  PlainTextBox box;
  box.setBytes("line\r\n");
  box.selectAll();
  const QString selected = box.textCursor().selectedText();
  box.appendBytes("more\r\n");
  EXPECT_EQ(box.textCursor().selectedText(), selected);
}

/// The items of a menu or of the menu bar, each with its keys, and below it what it opens.
std::string itemsOf(const QWidget& menu, const std::string& indent = {}) {
  std::string items;
  for (const QAction* const action : menu.actions()) {
    const std::string text = action->isSeparator() ? "-" : action->text().toStdString();
    const std::string keys = action->shortcut().toString().toStdString();
    items += indent + (action->isVisible() ? text : '(' + text + ')') + (keys.empty() ? "" : "  " + keys) + '\n';
    if (action->menu() != nullptr) items += itemsOf(*action->menu(), indent + "  ");
  }
  return items;
}

TEST(Menus, FollowTheScript) {
  QWidget window;
  QMenuBar bar(&window);
  const Menus menus(bar);
  for (const Script& script : loadScripts(QUORVEL_QT_SCRIPTS))
    play(script, [&](const std::string& line) { return line == "> bar" ? itemsOf(bar) : itemsOf(menus.treePopup()); });
}

TEST(WindowPlacement, AWindowIsBroughtBackWhenItCannotBeGrasped) {
  const QList<QRect> screens = {{0, 0, 1000, 800}, {1000, 0, 1000, 800}};
  const std::tuple<const char*, QRect, QRect> cases[] = {
      {"inside", {10, 20, 500, 400}, {10, 20, 500, 400}},
      {"second screen", {1100, 20, 500, 400}, {1100, 20, 500, 400}},
      {"partly outside", {800, 700, 500, 400}, {800, 700, 500, 400}},
      {"screen that is gone", {2500, 20, 500, 400}, {490, 20, 500, 400}},
      {"title above the screen", {10, -30, 500, 400}, {10, 0, 500, 400}},
      {"too large", {10, 20, 5000, 4000}, {0, 0, 990, 770}},
      {"too high, on the second screen", {1100, 20, 500, 800}, {1100, 0, 500, 770}},
      {"as large as the screen without its frame", {0, 0, 1000, 800}, {0, 0, 990, 770}},
      {"too large and outside", {5000, 5000, 5000, 4000}, {0, 0, 990, 770}},
  };
  const QSize frame(10, 30);
  for (const auto& [name, window, shown] : cases)
    EXPECT_EQ(broughtOnScreen(window, frame, screens), shown) << name;
}

TEST(FileDialogs, FiltersAreShownWithTheirPatternAndGiveASuffix) {
  EXPECT_EQ(nameFilter("Serv-U log file    (*.*)|*.*"), QStringLiteral("Serv-U log file    (*.*) (*)"));
  EXPECT_EQ(nameFilter("Filtered   (*.txt)|*.txt"), QStringLiteral("Filtered   (*.txt) (*.txt)"));
  EXPECT_EQ(withSuffix(QStringLiteral("/a.b/out"), "x|*.txt"), QStringLiteral("/a.b/out.txt"));
  EXPECT_EQ(withSuffix(QStringLiteral("/a/out.log"), "x|*.txt"), QStringLiteral("/a/out.log"));
  EXPECT_EQ(withSuffix(QStringLiteral("/a/out"), "x|*.*"), QStringLiteral("/a/out"));
}

TEST(ProgressRow, ShowsPositionsOfAnyRange) {
  ProgressRow row;
  const auto* const bar = row.findChild<QProgressBar*>();
  row.setRange(1, 4'000'000'001);
  row.setValue(2'000'000'001);
  EXPECT_EQ(bar->value(), bar->maximum() / 2);
  row.setValue(9'000'000'000);
  EXPECT_EQ(bar->value(), bar->maximum());
  row.setRange(5, 5);
  row.setValue(5);
  EXPECT_EQ(bar->value(), 0);
}

TEST(PlainMessage, ShowsTextAsItStandsInLinesThatFitTheScreen) {
  const QString word(80, u'x');
  QTimer::singleShot(0, qApp, [&word] {
    auto& box = dynamic_cast<QMessageBox&>(*QApplication::activeModalWidget());
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.text(), QStringLiteral("<img src=x>\n") + word + QStringLiteral("\nx"));
    EXPECT_EQ(box.windowTitle(), QStringLiteral("Quorvel analyzer"));
    box.button(QMessageBox::Cancel)->click();
  });
  EXPECT_FALSE(showPlainMessage(nullptr, QStringLiteral("<img src=x>\r\n") + word + u'x', Buttons::OkCancel));
}

TEST(PrintPages, LinesAreCutAtTheWidthAndAtEveryLineEnd) {
  PrintedLines lines("ab\r\n\r\nabcd\r\nabcdefghi\re\tf\n", 4);
  QStringList printed;
  while (const std::optional<QString> line = lines.next())
    printed += *line;
  EXPECT_EQ(printed.join(u'|'), QStringLiteral("ab||abcd|abcd|efgh|i|e f"));
  EXPECT_FALSE(lines.skip() || PrintedLines("", 4).next());
}

}  // namespace
}  // namespace quorvel::test
