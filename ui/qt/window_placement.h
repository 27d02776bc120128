// Where the main window appears.
#pragma once

#include <QList>
#include <QRect>

#include "app/main_window.h"

class QWidget;

namespace quorvel {

/// The nearest place where a window of that size can be seen and grasped, the usable areas of all screens being given,
/// the main screen's first. A window that lies partly outside stays where it is; one that does not fit with its frame,
/// which takes the given width and height, shrinks and lies on the screen as a whole.
[[nodiscard]] QRect broughtOnScreen(QRect window, QSize frame, const QList<QRect>& screens);

/// The part of a size that fits the window's screen, together with the window's frame.
[[nodiscard]] QSize sizeOnScreen(const QWidget& window, QSize size);

/// Moves and sizes the window, which is not shown yet; shown, it is maximized when the placement says so.
void applyPlacement(QWidget& window, const WindowPlacement& placement);

/// Bounds to store: those the window has when it is not maximized.
[[nodiscard]] WindowBounds normalBounds(const QWidget& window);

}  // namespace quorvel
