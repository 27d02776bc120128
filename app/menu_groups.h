// The groups of menu items that are switched together.
#pragma once

#include "app/view.h"

namespace quorvel::EnDis {

void enableFilterMenus(MenuView& view);
void disableFilterMenus(MenuView& view);
void enableCountMenus(MenuView& view);
void disableCountMenus(MenuView& view);

}  // namespace quorvel::EnDis
