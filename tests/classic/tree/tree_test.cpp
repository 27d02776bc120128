// The session tree, built of random sessions.
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "classic/find/record_format.h"
#include "classic/tree/add_to_tree_view.h"
#include "tests/support/memory_files.h"

namespace quorvel::test {
namespace {

/// The rules of the four layouts written down without any economy: every key in a map.
struct PlainTree {
  struct Node {
    std::int32_t parent;
    std::string text;
  };

  void add(int layout, const UserAct& record, std::int32_t recordNumber) {
    const std::string number = std::to_string(recordNumber);
    const std::string& childText = layout == 1 ? record.IP : layout == 2 ? record.Name : record.LogonTime;
    const std::string parentKey = layout < 2 ? record.Name : "a" + record.IP;
    addNode(0, parentKey, layout < 2 ? record.Name : record.IP);
    if (keys.contains(parentKey)) addNode(keys[parentKey], (layout < 2 ? "a" + number : number) + childText, childText);
  }
  [[nodiscard]] std::int32_t count() const { return static_cast<std::int32_t>(nodes.size()); }

  std::vector<Node> nodes;
  std::map<std::string, std::int32_t> keys;

 private:
  void addNode(std::int32_t parent, const std::string& key, const std::string& text) {
    const bool isNumber = key.find_first_not_of("0123456789") == std::string::npos;
    if (isNumber || keys.contains(key)) return;
    nodes.push_back({parent, text});
    keys[key] = count();
  }
};

/// Texts that collide with each other, with numbers and with keys of the other kind as often as possible.
std::string randomText(std::mt19937& random) {
  constexpr std::array kParts = {"", "", "a", "j", "1", "2", "11", "12", "QUIT", "quit", "/", ":", "\xB2", " 1"};
  return std::string(kParts[random() % kParts.size()]) + kParts[random() % kParts.size()];
}

/// A users file of random sessions, with damaged records among them.
std::string randomUsers(std::mt19937& random) {
  std::string bytes((1 + random() % 3000) * kRecordSize, '\0');
  for (std::size_t at = 0; at < bytes.size(); at += kRecordSize) {
    UserAct record;
    for (std::string* part : {&record.Name, &record.IP, &record.LogonTime})
      *part = randomText(random);
    const std::string written = encodeRecord(record);
    bytes.replace(at, written.size(), written);
    if (random() % 50 == 0) bytes[at + 5] = '\xFF';  // the name's length word points behind the record
  }
  if (random() % 2 == 0) bytes.resize(bytes.size() - kRecordSize + 9);
  return bytes;
}

/// Whatever is asked of a node that is not there is answered with nothing.
void expectNothingAt(SessionTree& tree, std::int32_t node) {
  tree.setChecked(node, true);
  EXPECT_TRUE(tree.text(node).empty() && !tree.isChecked(node)) << node;
  EXPECT_EQ(tree.childCount(node) + tree.parentOf(node) + tree.rowOf(node) + tree.recordOf(node), 0) << node;
  EXPECT_EQ(tree.childNode(node, 0) + tree.childNode(0, node) + tree.childNode(0, -1), 0) << node;
}

TEST(AddToTreeView, AgreesWithThePlainRulesOnRandomSessions) {
  SessionTree tree;  // nothing of the last sessions may stay in it
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const int layout = static_cast<int>(seed % kTreeLayoutCount);
    const bool displaysQuitUsers = seed % 3 != 0;
    std::string expected = randomUsers(random);
    MemoryFiles files;
    files.put("users.qva", expected);
    auto users = UsersFile::open(files, "users.qva", OpenMode::ReadWrite);
    AddToTreeView(users.value(), {layout, displaysQuitUsers}, tree, [] { return true; });

    PlainTree plain;
    std::map<std::int32_t, std::int32_t> firstRecords;
    for (std::size_t at = 0; at < expected.size(); at += kRecordSize) {
      const auto recordNumber = static_cast<std::int32_t>(at / kRecordSize + 1);
      const auto slot = std::span(expected).subspan(at, std::min(kRecordSize, expected.size() - at));
      const UserAct record = decodeRecord({slot.data(), slot.size()}).value_or(UserAct());
      if (displaysQuitUsers || record.Name != "QUIT") plain.add(layout, record, recordNumber);
      (void)encodeTreeIndex(plain.count(), slot);  // a damaged record is left as it is
      firstRecords.try_emplace(plain.count(), recordNumber);
    }
    ASSERT_TRUE(files.content("users.qva") == expected);
    ASSERT_EQ(tree.nodeCount(), plain.count());
    for (std::int32_t node = 1; node <= tree.nodeCount(); ++node) {
      const auto& [parent, text] = plain.nodes[static_cast<std::size_t>(node - 1)];
      ASSERT_TRUE(tree.parentOf(node) == parent && tree.text(node) == text) << "node " << node;
      ASSERT_EQ(tree.recordOf(node), firstRecords[node]) << "node " << node;
      ASSERT_EQ(tree.childNode(parent, tree.rowOf(node)), node);
      ASSERT_FALSE(tree.isChecked(node));
      tree.setChecked(node, true);
    }
    for (const std::int32_t node : {-1, tree.nodeCount() + 1, 1'000'000})
      expectNothingAt(tree, node);
    EXPECT_FALSE(tree.addParent("carl") || tree.addChild("a", 1, "x")) << "nothing is added to a tree that was built";
  }
  tree.clear();
  EXPECT_EQ(tree.parentCount(), 0);
}

}  // namespace
}  // namespace quorvel::test
