#include "ui/qt/pages/hour_grid.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QLocale>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <vector>

#include "ui/qt/pages/shown_text.h"

namespace quorvel {
namespace {

constexpr int kDays = 7;
constexpr int kHours = 24;
constexpr int kLabelledHours = 6;
constexpr int kGap = 4;  // pixels

QString dayName(int day) {
  return QLocale().dayName(day + 1, QLocale::ShortFormat);
}

std::int64_t highest(const HourValues& values) {
  std::int64_t most = 0;
  for (const auto& day : values)
    most = std::max(most, *std::max_element(day.begin(), day.end()));
  return most;
}

QColor mixed(const QColor& ground, const QColor& full, double share) {
  const auto between = [share](int a, int b) { return a + static_cast<int>((b - a) * share); };
  return {between(ground.red(), full.red()), between(ground.green(), full.green()),
          between(ground.blue(), full.blue())};
}

}  // namespace

HourGrid::HourGrid(const QString& title, QWidget* parent) : QWidget(parent), m_title(title) {
  setFocusPolicy(Qt::StrongFocus);
  setAccessibleName(title);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void HourGrid::setValues(const HourValues& values) {
  m_values = values;
  setAccessibleDescription(asText());
  update();
}

QString HourGrid::asText() const {
  struct Hour {
    std::int64_t value;
    int day;
    int hour;
  };
  std::vector<Hour> hours;
  for (int day = 0; day < kDays; ++day)
    for (int hour = 0; hour < kHours; ++hour)
      if (const auto value = m_values[static_cast<std::size_t>(day)][static_cast<std::size_t>(hour)]; value > 0)
        hours.push_back({value, day, hour});
  std::stable_sort(hours.begin(), hours.end(), [](const Hour& a, const Hour& b) { return a.value > b.value; });
  constexpr std::size_t kTold = 10;
  QStringList texts;
  for (std::size_t i = 0; i < std::min(kTold, hours.size()); ++i)
    texts += cellText(hours[i].day, hours[i].hour);
  return texts.isEmpty() ? QStringLiteral("Nothing to draw") : texts.join(u'\n');
}

QString HourGrid::cellText(int day, int hour) const {
  const std::int64_t value = m_values[static_cast<std::size_t>(day)][static_cast<std::size_t>(hour)];
  return QStringLiteral("%1 %2:00 - %3:00: %4").arg(dayName(day)).arg(hour).arg(hour + 1).arg(shownSize(value));
}

QSize HourGrid::sizeHint() const {
  const int line = fontMetrics().height();
  return {line * 20, line * 10};
}

QRect HourGrid::cell(int day, int hour) const {
  const int line = fontMetrics().height();
  int names = 0;
  for (int i = 0; i < kDays; ++i)
    names = std::max(names, fontMetrics().horizontalAdvance(dayName(i)));
  const QRect inside = rect().adjusted(names + 3 * kGap, line + kGap, -kGap, -line - kGap);
  const int left = inside.left() + inside.width() * hour / kHours;
  const int right = inside.left() + inside.width() * (hour + 1) / kHours;
  const int top = inside.top() + inside.height() * day / kDays;
  const int bottom = inside.top() + inside.height() * (day + 1) / kDays;
  return {left, top, right - left - 1, bottom - top - 1};
}

void HourGrid::paintEvent(QPaintEvent* event) {
  QWidget::paintEvent(event);
  QPainter painter(this);
  const QColor ground = palette().color(QPalette::Base);
  painter.fillRect(rect(), ground);
  painter.setPen(palette().color(QPalette::Text));
  const int line = fontMetrics().height();
  painter.drawText(rect().adjusted(kGap, 0, -kGap, 0), Qt::AlignLeft | Qt::AlignTop, m_title);
  const auto most = static_cast<double>(std::max<std::int64_t>(1, highest(m_values)));
  constexpr double kLeast = 0.15;  // a little is to be seen too
  for (int day = 0; day < kDays; ++day) {
    const QRect first = cell(day, 0);
    painter.drawText(QRect(kGap, first.top(), first.left() - 2 * kGap, first.height()),
                     Qt::AlignLeft | Qt::AlignVCenter, dayName(day));
    for (int hour = 0; hour < kHours; ++hour) {
      const auto value = m_values[static_cast<std::size_t>(day)][static_cast<std::size_t>(hour)];
      const double share = value == 0 ? 0 : kLeast + (1 - kLeast) * static_cast<double>(value) / most;
      const QColor empty = palette().color(QPalette::AlternateBase);
      painter.fillRect(cell(day, hour), mixed(empty, palette().color(QPalette::Highlight), share));
    }
  }
  for (int hour = 0; hour < kHours; hour += kLabelledHours)
    painter.drawText(QRect(cell(kDays - 1, hour).left(), height() - line - kGap / 2, 3 * line, line), Qt::AlignLeft,
                     QString::number(hour));
  if (!hasFocus()) return;
  painter.setPen(palette().color(QPalette::Text));
  painter.drawRect(cell(m_day, m_hour).adjusted(0, 0, -1, -1));
}

void HourGrid::keyPressEvent(QKeyEvent* event) {
  const int down = event->key() == Qt::Key_Down ? 1 : event->key() == Qt::Key_Up ? -1 : 0;
  const int right = event->key() == Qt::Key_Right ? 1 : event->key() == Qt::Key_Left ? -1 : 0;
  if (down == 0 && right == 0) return QWidget::keyPressEvent(event);
  m_day = std::clamp(m_day + down, 0, kDays - 1);
  m_hour = std::clamp(m_hour + right, 0, kHours - 1);
  setAccessibleDescription(cellText(m_day, m_hour));
  QToolTip::showText(mapToGlobal(cell(m_day, m_hour).bottomLeft()), plainToolTip(cellText(m_day, m_hour)), this);
  update();
}

bool HourGrid::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto* const help = static_cast<QHelpEvent*>(event);
  for (int day = 0; day < kDays; ++day)
    for (int hour = 0; hour < kHours; ++hour)
      if (cell(day, hour).contains(help->pos()))
        QToolTip::showText(help->globalPos(), plainToolTip(cellText(day, hour)), this);
  return true;
}

}  // namespace quorvel
