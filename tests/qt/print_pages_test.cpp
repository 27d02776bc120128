#include "ui/qt/print_pages.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QImage>
#include <QPdfWriter>

namespace quorvel::test {
namespace {

QString printed(std::string_view text, int columns) {
  PrintedLines lines(text, columns);
  QStringList result;
  while (const std::optional<QString> line = lines.next())
    result += *line;
  EXPECT_FALSE(lines.skip());
  return result.join(u'|');
}

TEST(PrintPages, LinesAreCutAtTheWidthAndAtEveryLineEnd) {
  EXPECT_EQ(printed("", 4), QString());
  EXPECT_EQ(printed("ab\r\n\r\ncd\n", 4), QStringLiteral("ab||cd"));
  EXPECT_EQ(printed("abcd\r\nabcdefghi\re\tf", 4), QStringLiteral("abcd|abcd|efgh|i|e f"));
}

TEST(PrintPages, AFullLineFitsThePage) {
  QImage page(600, 100, QImage::Format_Mono);
  for (int size = 6; size < 14; ++size) {
    const QFont font(QFontDatabase::systemFont(QFontDatabase::FixedFont).family(), size);
    const QString full(columnsPerLine(font, page), u'M');
    EXPECT_LE(QFontMetrics(font, &page).horizontalAdvance(full), page.width()) << size;
    EXPECT_GE(QFontMetrics(font, &page).horizontalAdvance(full + u'M'), page.width()) << size;
  }
}

TEST(PrintPages, PrintsEveryPageUntilStopped) {
  PrintedDocument document{"ftp.log", "2005-01-19 13:28:08", {}};
  for (int i = 0; i < 500; ++i)
    document.text += "line\r\n";
  for (const bool isStopped : {false, true}) {
    QByteArray pdf;
    QBuffer buffer(&pdf);
    buffer.open(QIODevice::WriteOnly);
    int pages = 0;
    {
      QPdfWriter writer(&buffer);
      const PrintOutcome outcome = printPages(writer, document, [&] { return ++pages < 2 || !isStopped; });
      EXPECT_EQ(outcome, isStopped ? PrintOutcome::Stopped : PrintOutcome::Printed);
    }
    EXPECT_EQ(pdf.count("/Type /Page\n"), pages);
    EXPECT_TRUE(isStopped ? pages == 2 : pages >= 5) << pages;
  }
}

}  // namespace
}  // namespace quorvel::test
