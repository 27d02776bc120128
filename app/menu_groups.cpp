#include "app/menu_groups.h"

#include <array>

namespace quorvel::EnDis {
namespace {

using MenuGroup = std::array<MenuItem, 5>;

constexpr MenuGroup kFilterMenus{MenuItem::mnuFilterSelected, MenuItem::mnuFilterAll, MenuItem::mnuFilterIP,
                                 MenuItem::mnuFilterUser, MenuItem::mnuFilterSession};
constexpr MenuGroup kCountMenus{MenuItem::mnuCountAllTransfers, MenuItem::mnuCountIPTransfers,
                                MenuItem::mnuCountSessionsTransfers, MenuItem::mnuCountUsersTransfers,
                                MenuItem::mnuCountSelectedSessions};

void enableGroup(MenuView& view, const MenuGroup& group, bool enabled) {
  for (const MenuItem item : group)
    view.enableMenuItem(item, enabled);
}

}  // namespace

void enableFilterMenus(MenuView& view) {
  enableGroup(view, kFilterMenus, true);
}

void disableFilterMenus(MenuView& view) {
  enableGroup(view, kFilterMenus, false);
}

void enableCountMenus(MenuView& view) {
  enableGroup(view, kCountMenus, true);
}

void disableCountMenus(MenuView& view) {
  enableGroup(view, kCountMenus, false);
}

}  // namespace quorvel::EnDis
