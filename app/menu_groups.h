// The groups of menu items that are switched together.
#pragma once

#include "app/view.h"

namespace quorvel::EnDis {

void enableFilterMenus(MenuView& view);
void disableFilterMenus(MenuView& view);
void enableCountMenus(MenuView& view);
void disableCountMenus(MenuView& view);

/// Everything that works on sessions: both groups above, what reads the users file, and the same items of the tree's
/// pop-up menu.
void enableSessionMenus(MenuView& view);
void disableSessionMenus(MenuView& view);

}  // namespace quorvel::EnDis
