#include "ui/qt/one_line_label.h"

#include <QPainter>
#include <QStyle>

#include "ui/qt/text.h"

namespace quorvel {
namespace {

constexpr int kPadding = 4;

}  // namespace

OneLineLabel::OneLineLabel(QWidget* parent) : QFrame(parent) {
  setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
}

void OneLineLabel::setText(const QString& text) {
  m_text = toOneLine(text);
  setAccessibleName(m_text);
  update();
}

QSize OneLineLabel::sizeHint() const {
  return {fontMetrics().averageCharWidth() * 16, fontMetrics().height() + 2 * frameWidth() + 2};
}

QSize OneLineLabel::minimumSizeHint() const {
  return {fontMetrics().averageCharWidth() * 4, sizeHint().height()};
}

void OneLineLabel::paintEvent(QPaintEvent* event) {
  QFrame::paintEvent(event);
  QPainter painter(this);
  const QRect inside = contentsRect().adjusted(kPadding, 0, -kPadding, 0);
  const QString shown = fontMetrics().elidedText(m_text, Qt::ElideRight, inside.width());
  style()->drawItemText(&painter, inside, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, palette(), isEnabled(),
                        shown, foregroundRole());
}

}  // namespace quorvel
