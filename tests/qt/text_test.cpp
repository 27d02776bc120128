#include "ui/qt/text.h"

#include <gtest/gtest.h>

#include "ui/qt/shown_lines.h"

namespace quorvel::test {
namespace {

TEST(Text, EveryByteIsOneCharacterAndComesBack) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte)
    all += static_cast<char>(byte);
  const QString text = toQString(all);
  EXPECT_EQ(text.size(), 256);
  EXPECT_EQ(QString(text[0x80]) + text[0x81] + text[0xE4], QStringLiteral("\u20ac\u0081\u00e4"));
  EXPECT_EQ(toBytes(text), all);
}

TEST(Text, WhatHasNoPlaceIsShownAsASymbol) {
  EXPECT_EQ(toBytes(QStringLiteral("a\u65e5\u20ac")), "a?\x80") << "not in the code page";
  EXPECT_EQ(toOneLine(toQString("a\r\nb\x1b[31m\x7f")), QStringLiteral("a\u240d\u240ab\u241b[31m\u2421"));
  EXPECT_EQ(toTitle("x[*]\n"), QStringLiteral("x[*][*]\u240a")) << "no mark of a modified document";
}

TEST(ShownLines, EveryLineEndIsOneLineBreakWhereverThePiecesAreCut) {
  const std::string text = "a\r\nb\nc\rd\r\n\r\n\n\re";
  for (std::size_t cut = 0; cut <= text.size(); ++cut) {
    ShownLines lines;
    const QString first = lines.next(std::string_view(text).substr(0, cut));
    EXPECT_EQ(first + lines.next(std::string_view(text).substr(cut)), QStringLiteral("a\nb\nc\nd\n\n\n\ne")) << cut;
  }
}

TEST(ShownLines, AnEndlessLineIsBrokenAcrossPieces) {
  ShownLines lines;
  const std::string piece(7'000, 'x');
  const QString first = lines.next(piece);
  const QString shown = first + lines.next(piece);
  EXPECT_EQ(shown.indexOf(u'\n'), ShownLines::kLongestLine);
  EXPECT_EQ(shown.size(), 14'001);
}

}  // namespace
}  // namespace quorvel::test
