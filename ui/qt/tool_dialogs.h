// The menu items that open a dialog or hand something to the desktop, without a command of the main window.
#pragma once

#include <vector>

#include "app/main_window.h"
#include "ui/view.h"

class QWidget;

namespace quorvel {

using Tool = void (*)(QWidget& window, frmMain& commands);

/// What the item opens; nullptr for an item that is no tool or has none yet, which is then disabled.
[[nodiscard]] Tool toolFor(MenuItem item);
/// All items that are opened here and not by a command of the main window.
[[nodiscard]] std::vector<MenuItem> toolItems();

}  // namespace quorvel
