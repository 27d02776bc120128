#include "app/menu_groups.h"

#include <array>
#include <span>

namespace quorvel::EnDis {
namespace {

constexpr std::array kFilterMenus{MenuItem::mnuFilterSelected, MenuItem::mnuFilterAll, MenuItem::mnuFilterIP,
                                  MenuItem::mnuFilterUser, MenuItem::mnuFilterSession};
constexpr std::array kCountMenus{MenuItem::mnuCountAllTransfers, MenuItem::mnuCountIPTransfers,
                                 MenuItem::mnuCountSessionsTransfers, MenuItem::mnuCountUsersTransfers,
                                 MenuItem::mnuCountSelectedSessions};

constexpr std::array kOtherSessionMenus{MenuItem::mnuSaveShortInfo, MenuItem::mnuReloadTreeView,
                                        MenuItem::mnuReloadTreeView02, MenuItem::mnuPopupCountSessionsTransfers};

void enableGroup(MenuView& view, std::span<const MenuItem> group, bool enabled) {
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

void enableSessionMenus(MenuView& view) {
  enableFilterMenus(view);
  enableCountMenus(view);
  enableGroup(view, kOtherSessionMenus, true);
}

void disableSessionMenus(MenuView& view) {
  disableFilterMenus(view);
  disableCountMenus(view);
  enableGroup(view, kOtherSessionMenus, false);
}

}  // namespace quorvel::EnDis
