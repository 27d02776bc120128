// The edit menu's items: they act on whatever has the keyboard.
#pragma once

class QMenu;

namespace quorvel {

/// Select all, Copy (Ctrl+C), Cut (Ctrl+X) and Paste (Ctrl+V).
void addEditActions(QMenu& menu);

}  // namespace quorvel
