#include "ui/qt/splash_window.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPixmap>

#include "app/program.h"
#include "ui/qt/text.h"
#include "ui/qt/window_icon.h"

namespace quorvel {
namespace {

constexpr QSize kSize(420, 150);
constexpr int kIconSize = 84;
constexpr int kMargin = 33;

QPixmap paintSplash() {
  const qreal ratio = qGuiApp->devicePixelRatio();
  QPixmap pixmap(kSize * ratio);
  pixmap.setDevicePixelRatio(ratio);
  const QPalette palette = QGuiApplication::palette();
  pixmap.fill(palette.color(QPalette::Window));

  QPainter painter(&pixmap);
  painter.setPen(palette.color(QPalette::Mid));
  painter.drawRect(QRect(QPoint(), kSize).adjusted(0, 0, -1, -1));
  windowIcon().paint(&painter, kMargin, kMargin, kIconSize, kIconSize);

  painter.setPen(palette.color(QPalette::WindowText));
  const QRect text(2 * kMargin + kIconSize - 8, kMargin, kSize.width() - 3 * kMargin - kIconSize + 16, kIconSize);
  QFont font = painter.font();
  font.setPointSizeF(font.pointSizeF() * 1.8);
  font.setBold(true);
  painter.setFont(font);
  painter.drawText(text, Qt::AlignLeft | Qt::AlignTop, toQString(kProgramName));
  painter.setFont(QGuiApplication::font());
  painter.drawText(text, Qt::AlignLeft | Qt::AlignBottom, QStringLiteral("Version ") + toQString(kVersion));
  return pixmap;
}

}  // namespace

frmSplash::frmSplash() : QSplashScreen(paintSplash()) {
  setObjectName(QStringLiteral("frmSplash"));
}

}  // namespace quorvel
