// The window's parts one by one.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTextBlock>
#include <QTimer>

#include "ui/qt/file_dialogs.h"
#include "ui/qt/plain_message.h"
#include "ui/qt/plain_text_box.h"
#include "ui/qt/progress_row.h"
#include "ui/qt/readable_colours.h"
#include "ui/qt/window_placement.h"

namespace quorvel::test {
namespace {

TEST(PlainTextBox, GivesBackTheBytesItWasGivenInPieces) {
  const std::string text("a\r\n<b>\0\xA0\x81\rz", 12);
  PlainTextBox box;
  box.setBytes("old");
  box.setBytes(text.substr(0, 2));  // cut inside the line end
  box.appendBytes(text.substr(2));
  EXPECT_EQ(box.bytes(), text);
  EXPECT_EQ(box.blockCount(), 3);
  const QString second = box.document()->firstBlock().next().text();
  EXPECT_EQ(second, QStringLiteral("<b>") + QChar(0) + QStringLiteral("\u00a0\u0081"));
  box.setBytes(box.bytes());
  EXPECT_EQ(box.bytes(), text);
}

TEST(PlainTextBox, CannotBeEditedAndAppendingMovesNothing) {
  PlainTextBox box;
  box.setBytes("");
  for (int i = 0; i < 1'000; ++i)
    box.appendBytes("line\r\n");
  EXPECT_TRUE(box.isReadOnly());
  EXPECT_FALSE(box.isUndoRedoEnabled());
  EXPECT_EQ(box.textCursor().position(), 0);
  EXPECT_FALSE(box.textCursor().hasSelection());
  box.selectAll();
  const qsizetype selected = box.textCursor().selectedText().size();
  box.appendBytes("more\r\n");
  EXPECT_EQ(box.textCursor().selectedText().size(), selected);
}

struct PlacementCase {
  const char* name;
  QRect window;
  QRect shown;
};

TEST(WindowPlacement, AWindowIsBroughtBackWhenItCannotBeGrasped) {
  const QList<QRect> screens = {{0, 0, 1000, 800}, {1000, 0, 1000, 800}};
  const PlacementCase cases[] = {
      {"inside", {10, 20, 500, 400}, {10, 20, 500, 400}},
      {"second screen", {1100, 20, 500, 400}, {1100, 20, 500, 400}},
      {"partly outside", {800, 700, 500, 400}, {800, 700, 500, 400}},
      {"screen that is gone", {2500, 20, 500, 400}, {500, 20, 500, 400}},
      {"title above the screen", {10, -30, 500, 400}, {10, 0, 500, 400}},
      {"too large", {10, 20, 5000, 4000}, {10, 20, 1000, 800}},
      {"too large and outside", {5000, 5000, 5000, 4000}, {0, 0, 1000, 800}},
  };
  for (const PlacementCase& c : cases)
    EXPECT_EQ(broughtOnScreen(c.window, screens), c.shown) << c.name;
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

TEST(ReadableColours, WhatIsDisabledIsReadOnADarkAndOnALightGround) {
  for (const QColor& ground : {QColor(0x20, 0x20, 0x20), QColor(0xf0, 0xf0, 0xf0)}) {
    QApplication::setPalette(QPalette(ground));
    useReadableColours();
    const QPalette shown = QApplication::palette();
    const int text = shown.color(QPalette::Disabled, QPalette::WindowText).lightness();
    EXPECT_GT(std::abs(text - ground.lightness()), 80);
    EXPECT_NE(text, shown.color(QPalette::WindowText).lightness());
    EXPECT_EQ(shown.color(QPalette::Window), ground);
  }
  QApplication::setPalette(QPalette());
}

TEST(PlainMessage, ShowsMarkupAsItStandsAndGivesTheAnswer) {
  for (const bool yes : {true, false}) {
    QTimer::singleShot(0, qApp, [yes] {
      auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      ASSERT_NE(box, nullptr);
      EXPECT_EQ(box->textFormat(), Qt::PlainText);
      EXPECT_EQ(box->text(), QStringLiteral("<img src=x>\nnext"));
      EXPECT_EQ(box->windowTitle(), QStringLiteral("Quorvel analyzer"));
      box->button(yes ? QMessageBox::Yes : QMessageBox::No)->click();
    });
    EXPECT_EQ(showPlainMessage(nullptr, QStringLiteral("<img src=x>\r\nnext"), Buttons::YesNo), yes);
  }
}

}  // namespace
}  // namespace quorvel::test
