// Which command each menu item runs.
#pragma once

#include "app/main_window.h"
#include "app/view.h"

namespace quorvel {

/// Runs the item's command. Items without one (Exit, and those that open a dialog of the view's own) do nothing.
void runMenuCommand(MenuItem item, frmMain& commands);

}  // namespace quorvel
