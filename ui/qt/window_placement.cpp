#include "ui/qt/window_placement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace quorvel {
namespace {

constexpr QSize kDefaultSize(960, 680);
/// As much of a window's upper edge must be on a screen for the mouse to grasp it.
constexpr QSize kHandle(80, 24);

/// Usable areas, the main screen's first.
QList<QRect> usableScreens() {
  QList<QRect> areas;
  const QScreen* const primary = QGuiApplication::primaryScreen();
  for (const QScreen* const screen : QGuiApplication::screens()) {
    if (screen == primary) {
      areas.prepend(screen->availableGeometry());
    } else {
      areas.append(screen->availableGeometry());
    }
  }
  return areas;
}

/// What the window manager will put around a window, whose title has about the size of the program's own font.
QSize expectedFrame(const QWidget& window) {
  constexpr int kBorder = 8;  // pixels, that of both sides
  return {kBorder, window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window) + 2 * kBorder};
}

bool canBeGrasped(const QRect& window, const QRect& screen) {
  const QRect edge(window.topLeft(), QSize(window.width(), kHandle.height()));
  const QRect seen = edge & screen;
  return seen.width() >= std::min(kHandle.width(), window.width()) && seen.height() == kHandle.height();
}

}  // namespace

QRect broughtOnScreen(QRect window, QSize frame, const QList<QRect>& screens) {
  if (screens.isEmpty()) return window;
  const auto home = std::find_if(screens.begin(), screens.end(),
                                 [&window](const QRect& screen) { return canBeGrasped(window, screen); });
  const QRect& screen = home == screens.end() ? screens.front() : *home;
  const QSize wanted = window.size();
  const QSize room = screen.size() - frame;
  window.setSize(wanted.boundedTo(room));
  if (home != screens.end() && window.size() == wanted) return window;
  const int left = std::clamp(window.left(), screen.left(), screen.left() + room.width() - window.width());
  const int top = std::clamp(window.top(), screen.top(), screen.top() + room.height() - window.height());
  window.moveTo(left, top);
  return window;
}

QSize sizeOnScreen(const QWidget& window, QSize size) {
  const QScreen* const screen = window.screen();
  return screen == nullptr ? size : size.boundedTo(screen->availableSize() - expectedFrame(window));
}

void applyPlacement(QWidget& window, const WindowPlacement& placement) {
  const QList<QRect> screens = usableScreens();
  if (placement.isCentred) {
    const QRect screen = screens.isEmpty() ? QRect() : screens.front();
    const QSize frame = expectedFrame(window);
    const QSize size = kDefaultSize.boundedTo(screen.size() - frame);
    window.resize(size);
    window.move(
        screen.topLeft() +
        QPoint(screen.width() - size.width() - frame.width(), screen.height() - size.height() - frame.height()) / 2);
    return;
  }
  constexpr int kFarthest = 1'000'000;  // the settings may hold anything; sums must stay in range
  const WindowBounds& bounds = placement.bounds;
  const QRect stored(std::min(bounds.left, kFarthest), std::min(bounds.top, kFarthest),
                     std::min(bounds.width, kFarthest), std::min(bounds.height, kFarthest));
  const QRect place = broughtOnScreen(stored, expectedFrame(window), screens);
  window.move(place.topLeft());
  window.resize(place.size());
  if (placement.isMaximized) window.setWindowState(window.windowState() | Qt::WindowMaximized);
}

WindowBounds normalBounds(const QWidget& window) {
  if (!window.isMaximized()) return {window.y(), window.x(), window.width(), window.height()};
  const QRect normal = window.normalGeometry();
  const QPoint frame = window.geometry().topLeft() - window.frameGeometry().topLeft();
  return {normal.y() - frame.y(), normal.x() - frame.x(), normal.width(), normal.height()};
}

}  // namespace quorvel
