#include "classic/tree/add_to_tree_view.h"

#include <array>
#include <string>

namespace quorvel {
namespace {

/// Node texts are fields of the record; the keys begin as they always did, though a user name made of digits is
/// refused as a key and "1" + "2john" is the same key as "12" + "john".
struct TreeLayout {
  std::string UserAct::*parentText;
  std::string UserAct::*childText;
  SessionTree::KeyPrefixes keyPrefixes;
  std::string_view header;
};

constexpr std::array<TreeLayout, kTreeLayoutCount> kLayouts = {{
    {&UserAct::Name, &UserAct::LogonTime, {"", "a"}, "Username\r\n|--Logontime"},
    {&UserAct::Name, &UserAct::IP, {"", "a"}, "Username\r\n|--IP"},
    {&UserAct::IP, &UserAct::Name, {"a", ""}, "IP\r\n|--Username"},
    {&UserAct::IP, &UserAct::LogonTime, {"a", ""}, "IP\r\n|--Logontime"},
}};

const TreeLayout& layoutOf(int layout) {
  return kLayouts[static_cast<std::size_t>(layout)];
}

}  // namespace

std::string_view treeHeader(int layout) {
  return isTreeLayout(layout) ? layoutOf(layout).header : std::string_view();
}

void AddToTreeView(UsersFile& users, const TreeOptions& options, SessionTree& tree,
                   const std::function<bool()>& keepGoing) {
  if (!isTreeLayout(options.layout)) return;
  const TreeLayout& layout = layoutOf(options.layout);
  tree.clear(layout.keyPrefixes);
  for (std::int32_t recordNumber = 1; const UserAct* const record = users.read(recordNumber); ++recordNumber) {
    if (options.displaysQuitUsers || record->Name != kQuit) {
      const std::string& parentText = (*record).*layout.parentText;
      tree.addParent(parentText);
      tree.addChild(parentText, recordNumber, (*record).*layout.childText);
    }
    tree.noteRecord(recordNumber);
    users.setTreeIndex(recordNumber, tree.nodeCount());
    if (!keepGoing()) break;
  }
  (void)users.flush();  // an index that cannot be written is ignored, the tree shows the session all the same
  tree.seal();
}

}  // namespace quorvel
