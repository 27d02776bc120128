#include "ui/qt/window_icon.h"

#include <QPainter>
#include <QPixmap>

namespace quorvel {
namespace {

const QColor kBlue(0x1f, 0x5f, 0xa8);
const QColor kLineGrey(0x9a, 0xa7, 0xb5);
const QColor kAmber(0xf2, 0xa0, 0x1e);

/// On a square of 64 units.
void paintPaper(QPainter& painter) {
  painter.setPen(QPen(kBlue, 3));
  painter.setBrush(Qt::white);
  painter.drawRoundedRect(QRectF(8, 4, 40, 54), 4, 4);
  painter.setPen(QPen(kLineGrey, 3, Qt::SolidLine, Qt::RoundCap));
  for (const int y : {14, 22, 38, 46})
    painter.drawLine(15, y, 41, y);
  painter.setPen(QPen(kAmber, 4, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(15, 30, 41, 30);
}

void paintGlass(QPainter& painter) {
  painter.setPen(QPen(kBlue, 7, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(47, 47, 58, 58);
  painter.setPen(QPen(kBlue, 4));
  painter.setBrush(QColor(0xd8, 0xe8, 0xf8, 0xb0));
  painter.drawEllipse(QPointF(38, 36), 13, 13);
}

QPixmap paintIcon(int size) {
  constexpr qreal kUnits = 64;
  QPixmap pixmap(size, size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(size / kUnits, size / kUnits);
  paintPaper(painter);
  paintGlass(painter);
  return pixmap;
}

}  // namespace

QIcon windowIcon() {
  QIcon icon;
  for (const int size : {16, 24, 32, 48, 64, 128, 256})
    icon.addPixmap(paintIcon(size));
  return icon;
}

}  // namespace quorvel
