// What stands in the menus, in order. Captions are shown as they stand, "&" marks the access key.
#pragma once

#include <optional>
#include <span>

#include "app/view.h"

namespace quorvel {

struct MenuLine;

struct MenuPart {
  const char* name;
  const char* caption;
  std::span<const MenuLine> lines;
};

/// An item; a submenu; without either a line that cannot be chosen: a separator when the caption is empty, else an
/// item that is not visible.
struct MenuLine {
  const char* name;
  const char* caption = "";
  std::optional<MenuItem> item = std::nullopt;
  const char* keys = "";  ///< e.g. "Ctrl+O"
  bool isCheckable = false;
  const MenuPart* submenu = nullptr;
};

/// The visible menus of the menu bar, from left to right; the edit menu, which is not visible, stands behind the first.
[[nodiscard]] std::span<const MenuPart> menuBarParts();
[[nodiscard]] const MenuPart& treePopupPart();

}  // namespace quorvel
