// Where the main window appears.
#pragma once

#include <QList>
#include <QRect>

#include "app/main_window.h"

class QWidget;

namespace quorvel {

/// The nearest place where a window of that size can be seen and grasped, the usable areas of all screens being given,
/// the main screen's first. A window that lies partly outside stays where it is; one larger than the screen shrinks.
[[nodiscard]] QRect broughtOnScreen(QRect window, const QList<QRect>& screens);

/// Moves and sizes the window, which is not shown yet; shown, it is maximized when the placement says so.
void applyPlacement(QWidget& window, const WindowPlacement& placement);

/// Bounds to store: those the window has when it is not maximized.
[[nodiscard]] WindowBounds normalBounds(const QWidget& window);

}  // namespace quorvel
