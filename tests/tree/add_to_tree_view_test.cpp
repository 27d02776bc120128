#include "tree/add_to_tree_view.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

#include "core/record_format.h"
#include "tests/support/temp_folder.h"
#include "tests/tree/tree_text.h"

namespace quorvel::test {
namespace {

/// A users file and the tree built from it.
class AddToTreeViewTest : public testing::Test {
 protected:
  void write(const std::vector<UserAct>& records) {
    (void)systemFiles().remove(path);
    UsersFileWriter writer(systemFiles(), path, [](const UserAct&, std::int32_t, const Error&) { FAIL(); });
    std::int32_t recordNumber = 0;
    for (const UserAct& record : records)
      writer.WriteSessionRecord(record, ++recordNumber);
  }
  void build(int layout, bool displaysQuitUsers = true) {
    auto users = UsersFile::open(systemFiles(), path, OpenMode::ReadWrite);
    ASSERT_TRUE(users.isOk());
    AddToTreeView(users.value(), {layout, displaysQuitUsers}, tree, [] { return true; });
  }
  /// What the file holds, read from its end.
  [[nodiscard]] std::vector<UserAct> records() const {
    auto users = std::move(UsersFile::open(systemFiles(), path).value());
    std::vector<UserAct> all(static_cast<std::size_t>(users.recordCount()));
    for (std::int32_t n = users.recordCount(); n > 0; --n)
      all[static_cast<std::size_t>(n - 1)] = users.read(n).value();
    return all;
  }

  TempFolder folder;
  std::filesystem::path path = folder / "users.qva";
  SessionTree tree;
};

TEST_F(AddToTreeViewTest, PassesOverRecordsThatAreDamagedOrCut) {
  write({{1, "ann", "", "i", "", "T1", "", 1, 0},
         {2, "bob", "", "i", "", "T2", "", 2, 0},
         {3, "c", "", "", "", "", "", 3, 0}});
  std::string bytes = folder.read("users.qva");
  bytes[5] = '\xFF';  // the name's length word points behind the record
  bytes.resize(recordOffset(3) + 9);
  folder.write("users.qva", bytes);
  build(0);
  EXPECT_EQ(treeText(tree), "1 bob\n  2 T2\n");
  UserAct shown = *decodeRecord(std::string_view(bytes).substr(recordOffset(2)));
  shown.TreeIndex = 2;
  ASSERT_NE(encodeRecord(shown, std::span(bytes).subspan(recordOffset(2))), 0u);
  EXPECT_EQ(folder.read("users.qva"), bytes) << "nothing else is written";
}

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
  constexpr std::array kSpecial = {"QUIT", "quit", "0", "9", "/", ":", "\xB2", " 1"};
  if (random() % 20 == 0) return kSpecial[random() % kSpecial.size()];
  std::string text;
  for (auto length = random() % 4; length > 0; --length)
    text += "a1122j"[random() % 6];
  return text;
}

TEST_F(AddToTreeViewTest, AgreesWithThePlainRulesOnRandomSessions) {
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::vector<UserAct> expected(1 + random() % 3000);
    for (UserAct& record : expected)
      for (std::string* part : {&record.Name, &record.IP, &record.LogonTime})
        *part = randomText(random);
    write(expected);
    const int layout = static_cast<int>(seed % kTreeLayoutCount);
    const bool displaysQuitUsers = seed % 3 != 0;
    build(layout, displaysQuitUsers);

    PlainTree plain;
    std::map<std::int32_t, std::int32_t> firstRecords;
    std::int32_t recordNumber = 0;
    for (UserAct& record : expected) {
      ++recordNumber;
      if (displaysQuitUsers || record.Name != "QUIT") plain.add(layout, record, recordNumber);
      record.TreeIndex = plain.count();
      firstRecords.try_emplace(record.TreeIndex, recordNumber);
    }
    ASSERT_EQ(records(), expected);
    ASSERT_EQ(tree.nodeCount(), plain.count());
    for (std::int32_t node = 1; node <= tree.nodeCount(); ++node) {
      const auto& [parent, text] = plain.nodes[static_cast<std::size_t>(node - 1)];
      ASSERT_TRUE(tree.parentOf(node) == parent && tree.text(node) == text) << "node " << node;
      ASSERT_EQ(tree.recordOf(node), firstRecords[node]) << "node " << node;
      ASSERT_EQ(tree.childNode(parent, tree.rowOf(node)), node);
    }
  }
}

}  // namespace
}  // namespace quorvel::test
