#include "ui/qt/print_pages.h"

#include <QFontDatabase>
#include <QPageRanges>
#include <QPagedPaintDevice>
#include <QPainter>
#include <algorithm>

#include "ui/qt/text.h"

namespace quorvel {
namespace {

constexpr int kPointSize = 8;  // a hundred columns on A4

/// How the lines of a document lie on the device's pages, in its own units.
struct PageShape {
  explicit PageShape(QPainter& painter)
      : area(painter.viewport()),
        lineHeight(std::max(1, painter.fontMetrics().lineSpacing())),
        columns(columnsPerLine(painter.font(), *painter.device())),
        lines(std::max(1, area.height() / lineHeight - 4)) {}  // less head line, foot line and a blank one for each

  [[nodiscard]] QRect line(int number) const {
    return {area.left(), area.top() + number * lineHeight, area.width(), lineHeight};
  }

  QRect area;
  int lineHeight;
  int columns;
  int lines;  ///< of text on a page
};

void drawFrame(QPainter& painter, const PageShape& shape, const PrintedDocument& document, const QString& number) {
  const QString title = toOneLine(toQString(document.title));
  const QString date = toQString(document.date);
  const QRect head = shape.line(0);
  const int dateWidth = painter.fontMetrics().horizontalAdvance(date + QStringLiteral("  "));
  painter.drawText(head, Qt::AlignLeft | Qt::TextSingleLine,
                   painter.fontMetrics().elidedText(title, Qt::ElideMiddle, head.width() - dateWidth));
  painter.drawText(head, Qt::AlignRight | Qt::TextSingleLine, date);
  constexpr int kLinesPerHeight = 10;
  painter.fillRect(head.left(), head.bottom(), head.width(), std::max(1, head.height() / kLinesPerHeight), Qt::black);
  painter.drawText(shape.line(shape.lines + 3), Qt::AlignHCenter | Qt::TextSingleLine, number);
}

void drawLines(QPainter& painter, const PageShape& shape, const QStringList& lines) {
  for (int i = 0; i < lines.size(); ++i)
    painter.drawText(shape.line(i + 2), Qt::AlignLeft | Qt::TextSingleLine | Qt::TextDontClip, lines[i]);
}

/// Of what is left of the text; empty when told to stop.
std::optional<std::int64_t> countPages(PrintedLines lines, int linesPerPage, const std::function<bool()>& keepGoing) {
  constexpr std::int64_t kLinesBetweenQuestions = 10'000;
  std::int64_t count = 0;
  while (lines.skip()) {
    if (++count % kLinesBetweenQuestions == 0 && !keepGoing()) return std::nullopt;
  }
  return std::max<std::int64_t>(1, (count + linesPerPage - 1) / linesPerPage);
}

QStringList takePage(PrintedLines& lines, int count) {
  QStringList page;
  while (page.size() < count) {
    const std::optional<QString> line = lines.next();
    if (!line) break;
    page += *line;
  }
  return page;
}

}  // namespace

PrintedLines::PrintedLines(std::string_view text, int columns)
    : m_rest(text), m_columns(static_cast<std::size_t>(std::max(1, columns))) {}

std::optional<QString> PrintedLines::next() {
  const std::optional<std::string_view> piece = take();
  if (!piece) return std::nullopt;
  return toOneLine(toQString(*piece).replace(u'\t', u' '));
}

std::optional<std::string_view> PrintedLines::take() {
  if (m_rest.empty()) return std::nullopt;
  const std::size_t end = std::min(m_rest.find_first_of("\r\n"), m_rest.size());
  const std::string_view line = m_rest.substr(0, std::min(end, m_columns));
  m_rest.remove_prefix(line.size());
  if (line.size() < end) return line;
  const bool isPair = m_rest.starts_with("\r\n");
  m_rest.remove_prefix(std::min<std::size_t>(isPair ? 2 : 1, m_rest.size()));
  return line;
}

int columnsPerLine(const QFont& font, QPaintDevice& device) {
  // A letter's width is no whole number: rounded down on each letter, a full line would be wider than the page.
  constexpr int kMany = 1000;
  const qreal width = QFontMetricsF(font, &device).horizontalAdvance(QString(kMany, u'M'));
  return std::max(1, static_cast<int>(device.width() * kMany / std::max(1.0, width)));
}

PrintOutcome printPages(QPagedPaintDevice& device, const PrintedDocument& document,
                        const std::function<bool()>& keepGoing) {
  QPainter painter;
  if (!painter.begin(&device)) return PrintOutcome::Failed;
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPointSize(kPointSize);
  painter.setFont(QFont(font, &device));

  const PageShape shape(painter);
  PrintedLines lines(document.text, shape.columns);
  const auto pageCount = countPages(lines, shape.lines, keepGoing);
  if (!pageCount) return PrintOutcome::Stopped;
  const QPageRanges wanted = device.pageRanges();
  bool isFirst = true;
  for (std::int64_t page = 1; page <= *pageCount; ++page) {
    const QStringList text = takePage(lines, shape.lines);
    if (!wanted.isEmpty() && !wanted.contains(static_cast<int>(page))) continue;
    if (!isFirst && !device.newPage()) return PrintOutcome::Failed;
    isFirst = false;
    drawFrame(painter, shape, document, QStringLiteral("Page %1 of %2").arg(page).arg(*pageCount));
    drawLines(painter, shape, text);
    if (!keepGoing()) return PrintOutcome::Stopped;
  }
  return painter.end() ? PrintOutcome::Printed : PrintOutcome::Failed;
}

}  // namespace quorvel
