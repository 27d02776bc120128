// The raw log as lines, however many there are: only those on the screen are read.
#pragma once

#include <QAbstractScrollArea>
#include <memory>
#include <vector>

#include "activity/activity.h"
#include "log/line_index.h"
#include "report/line_parser.h"

namespace quorvel {

/// A standard view would keep a number for each of a hundred million lines. One line is the current one; Shift extends
/// the selection from it, Ctrl+C copies.
class LogView : public QAbstractScrollArea {
  Q_OBJECT

 public:
  explicit LogView(QWidget* parent = nullptr);

  /// index is built on another thread meanwhile; noteGrown() tells that it knows more.
  void show(std::shared_ptr<const File> file, std::shared_ptr<const LineIndex> index, LineParser parser,
            TextEncoding encoding);
  void setEncoding(TextEncoding encoding);
  void clear();
  void noteGrown();
  [[nodiscard]] std::uint64_t lineCount() const { return m_lineCount; }
  [[nodiscard]] std::uint64_t currentLine() const { return m_current; }
  /// Offset of the current line's first byte, from 0.
  [[nodiscard]] std::uint64_t currentOffset() const;
  /// Makes a line current and brings it to the middle.
  void goToLine(std::uint64_t line);
  /// The same with the line that holds the byte; from 0.
  void goToOffset(std::uint64_t offset);
  /// Hits to mark: the line at each offset, and a tick in the scroll bar for all. hits is in order.
  void setHits(std::vector<std::uint64_t> hits);
  /// What stands in the middle while there is nothing to show.
  void setNotice(const QString& text);
  void copySelection() const;
  /// The text of a line as it is shown.
  [[nodiscard]] QString lineText(std::uint64_t line) const;

 signals:
  void currentLineChanged();

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;

 private:
  class HitTicks;

  void readLines();
  void fitScrollBars();
  void setCurrent(std::uint64_t line, bool extends);
  [[nodiscard]] int lineHeight() const;
  [[nodiscard]] int linesPerPage() const;
  [[nodiscard]] std::uint64_t topLine() const;
  [[nodiscard]] int numberWidth() const;
  [[nodiscard]] std::uint64_t lineUnder(int y) const;
  [[nodiscard]] bool isSelected(std::uint64_t line) const;
  [[nodiscard]] bool isHit(const IndexedLine& line) const;
  void paintLine(QPainter& painter, const IndexedLine& line, const QRect& row);
  [[nodiscard]] QString shown(const IndexedLine& line) const;

  std::shared_ptr<const File> m_file;
  std::shared_ptr<const LineIndex> m_index;
  LineParser m_parser;
  TextEncoding m_encoding = TextEncoding::Utf8;
  std::uint64_t m_lineCount = 0;
  std::uint64_t m_current = 0;
  std::uint64_t m_anchor = 0;
  std::vector<IndexedLine> m_lines;  // on the screen
  int m_widest = 0;                  // of those seen so far, in pixels
  std::vector<std::uint64_t> m_hits;
  HitTicks* m_ticks;
  QString m_notice;
};

/// The colour of a line's text by what the line says; the palette's own for what needs no attention.
[[nodiscard]] QColor lineColour(const QPalette& palette, const Event& event);

}  // namespace quorvel
