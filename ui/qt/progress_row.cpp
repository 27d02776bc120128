#include "ui/qt/progress_row.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <algorithm>
#include <chrono>

#include "ui/qt/one_line_label.h"
#include "ui/qt/text.h"

namespace quorvel {
namespace {

constexpr std::chrono::milliseconds kStopDelay(300);
constexpr int kSteps = 1000;  // of the bar, whatever the range: one step is about a pixel

QLabel* makeLabel(const QString& name) {
  auto* const label = new QLabel;
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  return label;
}

void keepPlace(QWidget* widget, bool keeps = true) {
  QSizePolicy policy = widget->sizePolicy();
  policy.setRetainSizeWhenHidden(keeps);
  widget->setSizePolicy(policy);
}

}  // namespace

ProgressRow::ProgressRow(QWidget* parent)
    : QWidget(parent),
      m_caption(makeLabel(QStringLiteral("lblCurrentPosCaption"))),
      m_position(makeLabel(QStringLiteral("lblCurrentPos"))),
      m_bar(new QProgressBar),
      m_result(new OneLineLabel),
      m_stop(new QPushButton(QStringLiteral("Stop"))) {
  m_caption->setText(QStringLiteral("Current position:"));
  m_position->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("2147483647")));
  m_caption->setMinimumWidth(1);  // on a narrow screen it gives way first
  m_bar->setObjectName(QStringLiteral("ProgressBar1"));
  m_bar->setAccessibleName(QStringLiteral("Progress"));
  m_bar->setRange(0, kSteps);
  m_stop->setObjectName(QStringLiteral("cmdStop"));
  m_stop->setToolTip(QStringLiteral("Stop the running command (Esc)"));
  m_stop->setFocusPolicy(Qt::NoFocus);
  connect(m_stop, &QPushButton::clicked, this, &ProgressRow::stopRequested);
  m_stopDelay.setSingleShot(true);
  m_stopDelay.setInterval(kStopDelay);
  connect(&m_stopDelay, &QTimer::timeout, m_stop, &QWidget::show);
  arrange();
}

void ProgressRow::arrange() {
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(m_caption);
  row->addWidget(m_position);
  row->addWidget(m_bar, 1);
  row->addWidget(m_result, 1);
  row->addWidget(m_stop);
  for (QWidget* const widget : std::initializer_list<QWidget*>{m_caption, m_position, m_bar, m_stop}) {
    keepPlace(widget);
    widget->hide();
  }
  m_result->setObjectName(QStringLiteral("lblResult"));
  m_result->hide();
}

void ProgressRow::showBar(bool visible) {
  m_bar->setVisible(visible);
}

void ProgressRow::setRange(std::int64_t minimum, std::int64_t maximum) {
  m_minimum = minimum;
  m_maximum = std::max(minimum, maximum);
  m_bar->setValue(0);
}

void ProgressRow::setValue(std::int64_t value) {
  if (m_maximum == m_minimum) return m_bar->setValue(0);
  const double share = static_cast<double>(std::clamp(value, m_minimum, m_maximum) - m_minimum) /
                       static_cast<double>(m_maximum - m_minimum);
  m_bar->setValue(static_cast<int>(share * kSteps));
}

void ProgressRow::showResult(std::string_view text) {
  m_result->setText(toQString(text));
  keepPlace(m_bar, text.empty());
  m_result->setVisible(!text.empty());
}

void ProgressRow::showLabels(bool visible) {
  m_caption->setVisible(visible);
  m_position->setVisible(visible);
}

void ProgressRow::setLabels(std::string_view caption, std::string_view position) {
  m_caption->setText(toOneLine(toQString(caption)));
  m_position->setText(toOneLine(toQString(position)));
}

void ProgressRow::showStop(bool visible) {
  if (visible) return m_stopDelay.start();
  m_stopDelay.stop();
  m_stop->hide();
}

}  // namespace quorvel
