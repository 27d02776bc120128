// Fills the session tree from the users file, in one of four layouts.
#pragma once

#include <functional>
#include <string_view>

#include "classic/find/users_file.h"
#include "classic/tree/session_tree.h"

namespace quorvel {

/// Layouts are numbered 0 to 3, as in the settings; do not change.
inline constexpr int kTreeLayoutCount = 4;
[[nodiscard]] constexpr bool isTreeLayout(int layout) {
  return layout >= 0 && layout < kTreeLayoutCount;
}

/// The two lines that name a layout above the tree, e.g. "Username" CR LF "|--Logontime". Empty for no layout.
[[nodiscard]] std::string_view treeHeader(int layout);

struct TreeOptions {
  int layout = 0;
  bool displaysQuitUsers = true;  ///< sessions named "QUIT" are shown as well
};

/// Rebuilds the tree from all records and sets the tree index of each to the node count at its turn, whether it got
/// nodes or not. A layout other than the four leaves the tree and the file as they are.
/// users: opened for reading and writing; all is in the file when this returns, save what could not be written.
/// keepGoing: asked after each record; false ends the build there: the tree stays partly filled, the records behind
/// keep their tree index. Before it lets others look at the file, it flushes users.
void AddToTreeView(UsersFile& users, const TreeOptions& options, SessionTree& tree,
                   const std::function<bool()>& keepGoing);

}  // namespace quorvel
