// Which command each menu item runs.
#pragma once

#include "app/main_window.h"
#include "ui/view.h"

class QWidget;

namespace quorvel {

/// Runs the item's command. Items without one (tools, Exit) do nothing.
void runMenuCommand(MenuItem item, QWidget& window, frmMain& commands);

}  // namespace quorvel
