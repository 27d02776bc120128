#include "ui/qt/pages/bar_chart.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <numeric>
#include <utility>

#include "ui/qt/pages/shown_text.h"

namespace quorvel {
namespace {

constexpr int kGap = 4;               // pixels
constexpr int kMostTextBars = 100;    // for a screen reader
constexpr int kWidestBarInLines = 4;  // heights of a line of text

}  // namespace

QColor partColour(const QPalette& palette, int part) {
  // The highlight's hue and others at equal distances from it; dark grounds get lighter colours.
  const bool isDark = palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
  constexpr int kHueStep = 67;
  constexpr int kHues = 360;
  const int hue = (std::max(0, palette.color(QPalette::Highlight).hslHue()) + part * kHueStep) % kHues;
  constexpr int kSaturation = 130;
  return QColor::fromHsl(hue, kSaturation, isDark ? 150 : 105);
}

std::int64_t Bar::sum() const {
  return std::accumulate(parts.begin(), parts.end(), std::int64_t{0});
}

BarChart::BarChart(QWidget* parent) : QWidget(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void BarChart::setBars(Bars bars) {
  m_bars = std::move(bars);
  m_from = m_to = -1;
  setAccessibleName(m_bars.title);
  setAccessibleDescription(asText());
  update();
}

QString BarChart::asText() const {
  QStringList lines;
  for (const Bar& bar : m_bars.bars) {
    if (lines.size() >= kMostTextBars) break;
    lines += barText(bar);
  }
  return lines.isEmpty() ? QStringLiteral("Nothing to draw") : lines.join(u'\n');
}

QString BarChart::valueText(std::int64_t value) const {
  return m_bars.areBytes ? shownSize(value) : shownCount(value);
}

QString BarChart::barText(const Bar& bar) const {
  QString text = bar.label + QStringLiteral(": ") + valueText(bar.sum());
  if (bar.parts.size() < 2) return text;
  QStringList parts;
  for (std::size_t i = 0; i < bar.parts.size(); ++i)
    if (bar.parts[i] > 0) parts += m_bars.partNames.value(static_cast<int>(i)) + u' ' + valueText(bar.parts[i]);
  return parts.isEmpty() ? text : text + QStringLiteral(" (") + parts.join(QStringLiteral(", ")) + u')';
}

QSize BarChart::sizeHint() const {
  const int line = fontMetrics().height();
  return {line * 20, line * 9};
}

QSize BarChart::minimumSizeHint() const {
  const int line = fontMetrics().height();
  return {line * 8, line * 6};
}

std::int64_t BarChart::highest() const {
  std::int64_t most = 1;
  for (const Bar& bar : m_bars.bars)
    most = std::max(most, bar.sum());
  return most;
}

QRect BarChart::plot() const {
  const int line = fontMetrics().height();
  const int scale = fontMetrics().horizontalAdvance(valueText(highest())) + 2 * kGap;
  return rect().adjusted(scale, 2 * line + kGap, -kGap, -line - kGap);
}

QRect BarChart::column(int bar) const {
  const QRect inside = plot();
  const auto count = static_cast<int>(m_bars.bars.size());
  const int widest = kWidestBarInLines * fontMetrics().height() * count;
  const int width = std::min(inside.width(), widest);
  const int left = inside.left() + width * bar / count;
  const int right = inside.left() + width * (bar + 1) / count;
  return {left, inside.top(), std::max(1, right - left), inside.height()};
}

int BarChart::barAt(const QPoint& place) const {
  for (int bar = 0; bar < static_cast<int>(m_bars.bars.size()); ++bar) {
    const QRect area = column(bar);
    if (place.x() >= area.left() && place.x() <= area.right()) return bar;
  }
  return -1;
}

void BarChart::paintEvent(QPaintEvent* event) {
  QWidget::paintEvent(event);
  QPainter painter(this);
  painter.fillRect(rect(), palette().color(QPalette::Base));
  painter.setPen(palette().color(QPalette::Text));
  paintLegend(painter);
  if (m_bars.bars.empty()) {
    painter.drawText(rect(), Qt::AlignCenter, QStringLiteral("Nothing to draw"));
    return;
  }
  paintScale(painter);
  const std::int64_t most = highest();
  for (int bar = 0; bar < static_cast<int>(m_bars.bars.size()); ++bar)
    paintBar(painter, bar, most);
  paintLabels(painter);
  if (!hasFocus()) return;
  painter.setPen(QPen(palette().color(QPalette::Highlight), 1, Qt::DotLine));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void BarChart::paintLegend(QPainter& painter) const {
  const int line = fontMetrics().height();
  const QRect head = rect().adjusted(kGap, 0, -kGap, 0);
  painter.drawText(QRect(head.left(), head.top(), head.width(), line), Qt::AlignLeft | Qt::AlignVCenter,
                   fontMetrics().elidedText(m_bars.title, Qt::ElideRight, head.width()));
  int x = head.left();
  for (int part = 0; part < m_bars.partNames.size(); ++part) {
    const QRect box(x, line + line / 4, line / 2, line / 2);
    painter.fillRect(box, partColour(palette(), part));
    const QString name = fontMetrics().elidedText(m_bars.partNames[part], Qt::ElideRight, 8 * line);
    const int width = fontMetrics().horizontalAdvance(name);
    if (box.right() + width > head.right()) break;
    painter.drawText(QRect(box.right() + kGap, line, width + kGap, line), Qt::AlignVCenter, name);
    x = box.right() + width + 4 * kGap;
  }
}

void BarChart::paintScale(QPainter& painter) const {
  const QRect inside = plot();
  const int line = fontMetrics().height();
  const QRect top(0, inside.top() - line / 2, inside.left() - kGap, line);
  painter.drawText(top, Qt::AlignRight | Qt::AlignVCenter, valueText(highest()));
  painter.drawText(QRect(0, inside.bottom() - line / 2, inside.left() - kGap, line), Qt::AlignRight | Qt::AlignVCenter,
                   QStringLiteral("0"));
  painter.save();
  painter.setPen(palette().color(QPalette::Mid));
  painter.drawLine(inside.bottomLeft(), inside.bottomRight());
  painter.drawLine(inside.topLeft(), inside.topRight());
  painter.restore();
}

void BarChart::paintBar(QPainter& painter, int bar, std::int64_t highest) const {
  const QRect area = column(bar);
  const auto [first, last] = std::minmax(m_from, m_to);
  if (first >= 0 && bar >= first && bar <= last)
    painter.fillRect(area, palette().color(QPalette::AlternateBase).darker(115));
  const int space = area.width() >= 5 ? std::max(1, area.width() / 8) : 0;
  double below = 0;
  const Bar& values = m_bars.bars[static_cast<std::size_t>(bar)];
  for (std::size_t part = 0; part < values.parts.size(); ++part) {
    const double height = static_cast<double>(values.parts[part]) / static_cast<double>(highest) * area.height();
    if (height <= 0) continue;
    const int top = area.bottom() + 1 - static_cast<int>(std::max(1.0, below + height));
    const int bottom = area.bottom() + 1 - static_cast<int>(below);
    painter.fillRect(QRect(area.left() + space, top, std::max(1, area.width() - 2 * space), bottom - top),
                     partColour(palette(), static_cast<int>(part)));
    below += height;
  }
}

void BarChart::paintLabels(QPainter& painter) const {
  const int line = fontMetrics().height();
  int free = 0;  // where the next label may begin
  for (int bar = 0; bar < static_cast<int>(m_bars.bars.size()); ++bar) {
    const QString& whole = m_bars.bars[static_cast<std::size_t>(bar)].label;
    const QRect area = column(bar);
    const QString label = fontMetrics().elidedText(whole, Qt::ElideRight, std::max(area.width(), 6 * line));
    const int width = fontMetrics().horizontalAdvance(label);
    const int left = std::clamp(area.center().x() - width / 2, 0, std::max(0, this->width() - width));
    if (left < free) continue;
    painter.drawText(QRect(left, area.bottom() + 1, width + kGap, line + kGap), Qt::AlignLeft | Qt::AlignVCenter,
                     label);
    free = left + width + 3 * kGap;
  }
}

void BarChart::select(int from, int to) {
  m_from = from;
  m_to = to;
  if (to >= 0) setAccessibleDescription(barText(m_bars.bars[static_cast<std::size_t>(to)]));
  update();
}

void BarChart::choose() {
  const auto [first, last] = std::minmax(m_from, m_to);
  if (first < 0) return;
  const Bar& begin = m_bars.bars[static_cast<std::size_t>(first)];
  const Bar& end = m_bars.bars[static_cast<std::size_t>(last)];
  if (begin.from != kNoTime && end.to != kNoTime) return emit periodChosen(begin.from, end.to);
  const auto word = m_bars.bars[static_cast<std::size_t>(m_to)].word;
  if (word) emit wordChosen(*word);
}

void BarChart::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  const int bar = barAt(event->position().toPoint());
  m_isDragging = bar >= 0;
  select(bar, bar);
}

void BarChart::mouseMoveEvent(QMouseEvent* event) {
  const int bar = barAt(event->position().toPoint());
  const bool isLink = bar >= 0 && (m_bars.bars[static_cast<std::size_t>(bar)].word ||
                                   m_bars.bars[static_cast<std::size_t>(bar)].from != kNoTime);
  setCursor(isLink ? Qt::PointingHandCursor : Qt::ArrowCursor);
  if (m_isDragging && bar >= 0) select(m_from, bar);
}

void BarChart::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && std::exchange(m_isDragging, false)) choose();
}

void BarChart::keyPressEvent(QKeyEvent* event) {
  const auto count = static_cast<int>(m_bars.bars.size());
  if (count == 0) return QWidget::keyPressEvent(event);
  const bool extends = event->modifiers().testFlag(Qt::ShiftModifier);
  const auto go = [this, count, extends](int bar) {
    const int to = std::clamp(bar, 0, count - 1);
    select(extends && m_from >= 0 ? m_from : to, to);
  };
  switch (event->key()) {
    case Qt::Key_Left:
      return go(m_to - 1);
    case Qt::Key_Right:
      return go(m_to + 1);
    case Qt::Key_Home:
      return go(0);
    case Qt::Key_End:
      return go(count - 1);
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return choose();
    default:
      QWidget::keyPressEvent(event);
  }
}

bool BarChart::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto* const help = static_cast<QHelpEvent*>(event);
  const int bar = barAt(help->pos());
  if (bar < 0) QToolTip::hideText();
  if (bar >= 0)
    QToolTip::showText(help->globalPos(), plainToolTip(barText(m_bars.bars[static_cast<std::size_t>(bar)])), this);
  return true;
}

}  // namespace quorvel
