#include "app/tree_commands.h"

#include <random>

#include "tests/app/scanned_log.h"

namespace quorvel::test {
namespace {

class TreeClicks : public ScannedLogTest {
 protected:
  TreeClicks() { settings.WriteSetting("OPTION-FILTER", "AutoFilterSession", "0"); }
  void set(std::string_view key, std::string_view value) { settings.WriteSetting("OPTION-TREEVIEW", key, value); }
  void write(const std::vector<std::string>& names) {
    (void)systemFiles().remove(state.usersFilePath());
    UsersFileWriter writer(systemFiles(), state.usersFilePath(),
                           [](const UserAct&, std::int32_t, const Error&) { FAIL(); });
    for (const std::string& name : names) {
      UserAct record;
      record.Name = name;
      record.LogonNo = static_cast<std::int32_t>(&name - names.data()) + 1;
      record.IP = "10.0.0." + std::to_string(record.LogonNo);
      record.LogonTime = "T" + std::to_string(record.LogonNo);
      writer.WriteSessionRecord(record, record.LogonNo);
    }
  }
  /// Number of the session that a click on the node shows.
  [[nodiscard]] std::int32_t shownBy(std::int32_t node) {
    state.currentSession = {};
    clickNode(context, node);
    return state.currentSession.LogonNo;
  }
};

/// The rule of a click as it is told: read record after record.
std::int32_t readUntilFound(UsersFile& users, std::int32_t nodeCount, std::int32_t node) {
  std::int32_t recordNumber = 1;
  std::int32_t shown = 0;
  while (const auto record = users.read(recordNumber)) {
    shown = recordNumber++;
    if (record->TreeIndex == node || recordNumber > nodeCount) break;
  }
  return shown;
}

TEST_F(TreeClicks, ClicksAgreeWithReadingRecordAfterRecord) {
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    std::mt19937 random(seed);
    std::vector<std::string> names(2 + random() % 30);
    for (std::string& name : names)
      name = std::array{"ann", "bob", "QUIT", "QUIT", "12", ""}[random() % 6];
    set("DisplayQUITUsers", seed % 2 == 0 ? "0" : "1");
    set("TreeViewType", std::to_string(random() % 4));
    write(names);
    buildSessionTree(context);
    set("TreeViewType", std::to_string(random() % 4));
    const int stopAfter = 1 + static_cast<int>(random() % names.size());  // the rest keeps the first build's indexes
    view.atYield(view.yieldCount() + stopAfter, [&] { state.stopFlag = true; });
    buildSessionTree(context);

    if (seed % 3 == 1) write(names);  // a second program on the same files
    if (seed % 3 == 2) write({"shorter"});
    auto users = UsersFile::open(systemFiles(), state.usersFilePath());
    for (std::int32_t node = 1; node <= state.tree.nodeCount(); ++node)
      EXPECT_EQ(shownBy(node), readUntilFound(users.value(), state.tree.nodeCount(), node))
          << "seed " << seed << ", node " << node;
  }
}

}  // namespace
}  // namespace quorvel::test
