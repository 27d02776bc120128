// The menu items that open a dialog of this view, without a command of the main window.
#pragma once

#include <string_view>

#include "app/main_window.h"
#include "app/view.h"

class QWidget;

namespace quorvel {

using Tool = void (*)(QWidget& window, frmMain& commands);

/// What the item opens; nullptr for an item that is no tool.
[[nodiscard]] Tool toolFor(MenuItem item);
/// Looks an address up with the dialog of mnuGetComputersIP.
void lookUp(QWidget& window, frmMain& commands, std::string_view address);

}  // namespace quorvel
