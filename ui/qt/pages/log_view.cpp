#include "ui/qt/pages/log_view.h"

#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <limits>
#include <utility>

#include "ui/qt/pages/shown_text.h"

namespace quorvel {
namespace {

constexpr int kGap = 4;  // pixels
constexpr std::size_t kMostCopiedLines = 100'000;

bool isRefusal(const Event& event) {
  constexpr ReplyCode kFirstFailure = 400;
  const bool isReply = event.kind == EventKind::Reply || event.kind == EventKind::Answer;
  const bool isFailedReply = event.reply >= kFirstFailure && event.reply < kSftpStatus;
  const bool isFile = event.kind == EventKind::Transfer || event.kind == EventKind::FileChange;
  return event.kind == EventKind::Refused || (isReply && isFailedReply) || (isFile && event.outcome == Outcome::Failed);
}

}  // namespace

QColor lineColour(const QPalette& palette, const Event& event) {
  constexpr int kRed = 0;
  constexpr int kOrange = 32;
  constexpr int kGreen = 135;
  constexpr int kBlue = 215;
  const bool isDark = palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
  const auto hue = [isDark](int value) { return QColor::fromHsl(value, 170, isDark ? 165 : 85); };
  if (isRefusal(event)) return hue(kRed);
  switch (event.kind) {
    case EventKind::Unknown:
      return hue(kOrange);
    case EventKind::LoggedOn:
      return hue(kGreen);
    case EventKind::Transfer:
    case EventKind::FileChange:
      return hue(kBlue);
    case EventKind::Foreign:
      return palette.color(QPalette::Disabled, QPalette::Text);
    default:
      return palette.color(QPalette::Text);
  }
}

/// Beside the scroll bar: where in the log the hits are.
class LogView::HitTicks final : public QWidget {
 public:
  explicit HitTicks(const LogView& view) : m_view(view) {}

  [[nodiscard]] QSize sizeHint() const override { return {2 * kGap, 0}; }

 protected:
  void paintEvent(QPaintEvent*) override {
    if (m_view.m_hits.empty() || !m_view.m_file) return;
    const auto size = m_view.m_file->size();
    if (!size.isOk() || size.value() == 0) return;
    QPainter painter(this);
    int last = -1;
    for (const std::uint64_t hit : m_view.m_hits) {
      const auto y = static_cast<int>(static_cast<double>(hit) / static_cast<double>(size.value()) * height());
      if (y != last) painter.fillRect(0, y, width(), 2, palette().color(QPalette::Highlight));
      last = y;
    }
  }

 private:
  const LogView& m_view;
};

LogView::LogView(QWidget* parent) : QAbstractScrollArea(parent), m_ticks(new HitTicks(*this)) {
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  setAccessibleName(QStringLiteral("Log"));
  setFocusPolicy(Qt::StrongFocus);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  viewport()->setCursor(Qt::IBeamCursor);
  addScrollBarWidget(m_ticks, Qt::AlignLeft);
}

void LogView::show(std::shared_ptr<const File> file, std::shared_ptr<const LineIndex> index, LineParser parser,
                   TextEncoding encoding) {
  clear();
  m_file = std::move(file);
  m_index = std::move(index);
  m_parser = std::move(parser);
  m_encoding = encoding;
  noteGrown();
}

void LogView::clear() {
  m_file.reset();
  m_index.reset();
  m_lineCount = m_current = m_anchor = 0;
  m_lines.clear();
  m_hits.clear();
  m_widest = 0;
  verticalScrollBar()->setValue(0);
  fitScrollBars();
  viewport()->update();
}

void LogView::setEncoding(TextEncoding encoding) {
  m_encoding = encoding;
  viewport()->update();
}

void LogView::setNotice(const QString& text) {
  m_notice = text;
  viewport()->update();
}

void LogView::noteGrown() {
  if (!m_index) return;
  m_lineCount = m_index->lineCount();
  fitScrollBars();
  readLines();
}

int LogView::lineHeight() const {
  return fontMetrics().lineSpacing();
}

int LogView::linesPerPage() const {
  return std::max(1, viewport()->height() / lineHeight());
}

std::uint64_t LogView::topLine() const {
  return static_cast<std::uint64_t>(verticalScrollBar()->value());
}

int LogView::numberWidth() const {
  const auto digits = std::max<qsizetype>(4, shownCount(static_cast<std::int64_t>(m_lineCount)).size());
  return fontMetrics().horizontalAdvance(QString(digits, u'0')) + 2 * kGap;
}

void LogView::fitScrollBars() {
  constexpr std::uint64_t kMost = std::numeric_limits<int>::max();
  const auto lines = static_cast<int>(std::min(m_lineCount, kMost));
  verticalScrollBar()->setPageStep(linesPerPage());
  verticalScrollBar()->setRange(0, std::max(0, lines - linesPerPage()));
  const int room = viewport()->width() - numberWidth() - kGap;
  horizontalScrollBar()->setPageStep(std::max(1, room));
  horizontalScrollBar()->setSingleStep(fontMetrics().averageCharWidth() * 4);
  horizontalScrollBar()->setRange(0, std::max(0, m_widest - room));
}

void LogView::readLines() {
  m_lines.clear();
  if (m_file && m_index) {
    auto lines = m_index->lines(*m_file, topLine(), static_cast<std::size_t>(linesPerPage()) + 1);
    if (lines.isOk()) m_lines = std::move(lines.value());
  }
  for (const IndexedLine& line : m_lines)
    m_widest = std::max(m_widest, fontMetrics().horizontalAdvance(shown(line)));
  fitScrollBars();
  viewport()->update();
  m_ticks->update();
}

QString LogView::shown(const IndexedLine& line) const {
  QString text = plainLine(utf8Of(line.text, m_encoding));
  if (line.text.size() == LineIndex::kLongestText) text += QStringLiteral("...");
  return text;
}

QString LogView::lineText(std::uint64_t line) const {
  if (!m_file || !m_index) return {};
  const auto lines = m_index->lines(*m_file, line, 1);
  return lines.isOk() && !lines.value().empty() ? shown(lines.value().front()) : QString();
}

bool LogView::isSelected(std::uint64_t line) const {
  const auto [first, last] = std::minmax(m_current, m_anchor);
  return line >= first && line <= last;
}

bool LogView::isHit(const IndexedLine& line) const {
  const auto hit = std::lower_bound(m_hits.begin(), m_hits.end(), line.offset);
  return hit != m_hits.end() && *hit <= line.offset + line.text.size();
}

void LogView::paintEvent(QPaintEvent*) {
  QPainter painter(viewport());
  painter.setFont(font());
  if (m_lines.empty()) {
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, m_notice);
    return;
  }
  for (const IndexedLine& line : m_lines) {
    const int y = static_cast<int>(line.number - topLine()) * lineHeight();
    paintLine(painter, line, {0, y, viewport()->width(), lineHeight()});
  }
}

void LogView::paintLine(QPainter& painter, const IndexedLine& line, const QRect& row) {
  const int numbers = numberWidth();
  const bool selected = isSelected(line.number);
  if (selected) painter.fillRect(row, palette().color(QPalette::Highlight));
  if (!selected && isHit(line)) painter.fillRect(row, palette().color(QPalette::AlternateBase).darker(115));
  const QColor own = palette().color(selected ? QPalette::HighlightedText : QPalette::Text);
  const QColor colour = selected ? own : lineColour(palette(), m_parser.parse(line.text));
  painter.setPen(colour);
  painter.setClipRect(row.adjusted(numbers, 0, 0, 0));
  const QRect text(numbers + kGap - horizontalScrollBar()->value(), row.top(), m_widest + numbers, row.height());
  painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shown(line));
  painter.setClipping(false);
  painter.setPen(selected ? own : palette().color(QPalette::Disabled, QPalette::Text));
  painter.drawText(QRect(0, row.top(), numbers - kGap, row.height()), Qt::AlignRight | Qt::AlignVCenter,
                   shownCount(static_cast<std::int64_t>(line.number + 1)));
  if (line.number != m_current || !hasFocus()) return;
  painter.setPen(QPen(own, 1, Qt::DotLine));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(row.adjusted(0, 0, -1, -1));
}

void LogView::setCurrent(std::uint64_t line, bool extends) {
  if (m_lineCount == 0) return;
  m_current = std::min(line, m_lineCount - 1);
  if (!extends) m_anchor = m_current;
  const std::uint64_t top = topLine();
  const auto page = static_cast<std::uint64_t>(linesPerPage());
  if (m_current < top) verticalScrollBar()->setValue(static_cast<int>(m_current));
  if (m_current >= top + page) verticalScrollBar()->setValue(static_cast<int>(m_current - page + 1));
  setAccessibleDescription(lineText(m_current));
  viewport()->update();
  emit currentLineChanged();
}

void LogView::goToLine(std::uint64_t line) {
  if (m_lineCount == 0) return;
  const std::uint64_t wanted = std::min(line, m_lineCount - 1);
  const auto half = static_cast<std::uint64_t>(linesPerPage()) / 2;
  verticalScrollBar()->setValue(static_cast<int>(wanted - std::min(half, wanted)));
  setCurrent(wanted, false);
}

void LogView::goToOffset(std::uint64_t offset) {
  if (!m_file || !m_index) return;
  const auto line = m_index->lineAt(*m_file, offset);
  if (line.isOk()) goToLine(line.value());
}

std::uint64_t LogView::currentOffset() const {
  if (!m_file || !m_index) return 0;
  const auto lines = m_index->lines(*m_file, m_current, 1);
  return lines.isOk() && !lines.value().empty() ? lines.value().front().offset : 0;
}

void LogView::setHits(std::vector<std::uint64_t> hits) {
  m_hits = std::move(hits);
  viewport()->update();
  m_ticks->update();
}

void LogView::copySelection() const {
  if (!m_file || !m_index) return;
  const auto [first, last] = std::minmax(m_current, m_anchor);
  const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(last - first + 1, kMostCopiedLines));
  const auto lines = m_index->lines(*m_file, first, count);
  if (!lines.isOk()) return;
  QString text;
  for (const IndexedLine& line : lines.value())
    text += shown(line) + u'\n';
  QApplication::clipboard()->setText(text);
}

std::uint64_t LogView::lineUnder(int y) const {
  return topLine() + static_cast<std::uint64_t>(std::max(0, y) / lineHeight());
}

bool LogView::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy))
    event->accept();
  return QAbstractScrollArea::event(event);
}

void LogView::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  readLines();
}

void LogView::changeEvent(QEvent* event) {
  QAbstractScrollArea::changeEvent(event);
  if (event->type() == QEvent::FontChange) readLines();
}

void LogView::scrollContentsBy(int, int dy) {
  if (dy != 0) readLines();
  viewport()->update();
}

void LogView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) return copySelection();
  const bool extends = event->modifiers().testFlag(Qt::ShiftModifier);
  const auto page = static_cast<std::uint64_t>(linesPerPage());
  const auto back = [this](std::uint64_t lines) { return m_current - std::min(m_current, lines); };
  switch (event->key()) {
    case Qt::Key_Up:
      return setCurrent(back(1), extends);
    case Qt::Key_Down:
      return setCurrent(m_current + 1, extends);
    case Qt::Key_PageUp:
      return setCurrent(back(page), extends);
    case Qt::Key_PageDown:
      return setCurrent(m_current + page, extends);
    case Qt::Key_Home:
      return setCurrent(0, extends);
    case Qt::Key_End:
      return setCurrent(m_lineCount, extends);
    case Qt::Key_Left:
    case Qt::Key_Right:
      return horizontalScrollBar()->triggerAction(event->key() == Qt::Key_Left ? QAbstractSlider::SliderSingleStepSub
                                                                               : QAbstractSlider::SliderSingleStepAdd);
    default:
      QAbstractScrollArea::keyPressEvent(event);
  }
}

void LogView::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  setCurrent(lineUnder(event->position().toPoint().y()), event->modifiers().testFlag(Qt::ShiftModifier));
}

void LogView::mouseMoveEvent(QMouseEvent* event) {
  if (event->buttons().testFlag(Qt::LeftButton)) setCurrent(lineUnder(event->position().toPoint().y()), true);
}

}  // namespace quorvel
