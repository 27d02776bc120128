#include "tree/add_to_tree_view.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <sstream>

#include "core/record_format.h"
#include "tests/support/temp_folder.h"
#include "tests/tree/tree_text.h"

namespace quorvel::test {
namespace {

/// A users file and the tree built from it.
class AddToTreeViewTest : public testing::Test {
 protected:
  /// One session a line: name, address and logon time, separated by blanks.
  void write(const std::string& sessions) {
    std::vector<UserAct> records;
    std::istringstream lines(sessions);
    for (UserAct record; lines >> record.Name >> record.IP >> record.LogonTime;)
      records.push_back(record);
    write(records);
  }
  void write(const std::vector<UserAct>& records) {
    (void)systemFiles().remove(path);
    UsersFileWriter writer(systemFiles(), path, [](const UserAct&, std::int32_t, const Error&) { FAIL(); });
    std::int32_t recordNumber = 0;
    for (UserAct record : records) {
      record.LogonNo = ++recordNumber;
      record.TreeIndex = kOldIndex;
      writer.WriteSessionRecord(record, recordNumber);
    }
  }
  /// Stops after the record of that number; 0: never.
  void build(int layout, bool displaysQuitUsers = true, std::int32_t stopAfter = 0) {
    auto users = UsersFile::open(systemFiles(), path, OpenMode::ReadWrite);
    ASSERT_TRUE(users.isOk());
    std::int32_t asked = 0;
    AddToTreeView(users.value(), {layout, displaysQuitUsers}, tree, [&] { return ++asked != stopAfter; });
  }
  [[nodiscard]] std::string text() const { return treeText(tree); }
  [[nodiscard]] std::vector<std::int32_t> treeIndexes() const {
    auto users = UsersFile::open(systemFiles(), path);
    std::vector<std::int32_t> indexes;
    for (std::int32_t n = 1; users.isOk() && n <= users.value().recordCount(); ++n)
      indexes.push_back(users.value().read(n)->TreeIndex);
    return indexes;
  }

  static constexpr std::int32_t kOldIndex = 4711;
  TempFolder folder;
  std::filesystem::path path = folder / "users.qva";
  SessionTree tree;
};

using Indexes = std::vector<std::int32_t>;

TEST_F(AddToTreeViewTest, NamesTheFourLayouts) {
  const std::array<const char*, 6> headers = {
      "", "Username\r\n|--Logontime", "Username\r\n|--IP", "IP\r\n|--Username", "IP\r\n|--Logontime", ""};
  for (int layout = -1; layout <= kTreeLayoutCount; ++layout)
    EXPECT_EQ(treeHeader(layout), headers[static_cast<std::size_t>(layout + 1)]);
}

TEST_F(AddToTreeViewTest, StoppingLeavesTheRestOfTheRecordsAlone) {
  write("ann i T1\nbob i T2\nann i T3\nbob i T4\n");
  build(0, true, 2);
  EXPECT_EQ(text(), "1 ann\n  2 T1\n3 bob\n  4 T2\n");
  EXPECT_EQ(treeIndexes(), (Indexes{2, 4, kOldIndex, kOldIndex}));
  EXPECT_EQ(tree.lastNotedRecord(), 2);
}

TEST_F(AddToTreeViewTest, AnUnknownLayoutChangesNothingAnEmptyFileEmptiesTheTree) {
  write("ann i T1\n");
  build(0);
  write("bob i T1\n");
  for (const int layout : {-1, 4, 65536})
    build(layout);
  EXPECT_EQ(text(), "1 ann\n  2 T1\n");
  EXPECT_EQ(treeIndexes(), Indexes{kOldIndex});
  folder.write("users.qva", "");
  build(0);
  EXPECT_EQ(text(), "");
}

TEST_F(AddToTreeViewTest, NothingButTheTreeIndexChangesAndADamagedRecordNotAtAll) {
  write("ann i T1\nbob i T2\ncarl i T3\n");
  std::string bytes = folder.read("users.qva");
  bytes[kRecordSize + 5] = '\xFF';  // the name's length word points behind the record
  folder.write("users.qva", bytes);
  const auto records = [this] {
    auto users = UsersFile::open(systemFiles(), path);
    return std::pair(users.value().read(1).value(), users.value().read(3).value());
  };
  auto expected = records();
  build(0);
  EXPECT_EQ(text(), "1 ann\n  2 T1\n3 carl\n  4 T3\n");
  expected.first.TreeIndex = 2;
  expected.second.TreeIndex = 4;
  EXPECT_EQ(records(), expected);
  EXPECT_EQ(folder.read("users.qva").substr(kRecordSize, kRecordSize), bytes.substr(kRecordSize, kRecordSize));
}

/// The rules of the four layouts written down without any economy: every key in a map.
class PlainTree {
 public:
  std::int32_t add(int layout, const UserAct& record, std::int32_t recordNumber) {
    const std::string number = std::to_string(recordNumber);
    switch (layout) {
      case 0:
        return addSession(record.Name, record.Name, "a" + number + record.LogonTime, record.LogonTime);
      case 1:
        return addSession(record.Name, record.Name, "a" + number + record.IP, record.IP);
      case 2:
        return addSession("a" + record.IP, record.IP, number + record.Name, record.Name);
      default:
        return addSession("a" + record.IP, record.IP, number + record.LogonTime, record.LogonTime);
    }
  }
  [[nodiscard]] std::string text(std::int32_t parent = 0, const std::string& indent = {}) const {
    std::string all;
    for (std::size_t i = 0; i < m_nodes.size(); ++i)
      if (m_nodes[i].parent == parent) {
        const auto node = static_cast<std::int32_t>(i + 1);
        all += indent + std::to_string(node) + " " + m_nodes[i].text + "\n" + text(node, indent + "  ");
      }
    return all;
  }
  [[nodiscard]] std::int32_t count() const { return static_cast<std::int32_t>(m_nodes.size()); }

 private:
  struct Node {
    std::int32_t parent;
    std::string text;
  };
  std::int32_t addSession(const std::string& parentKey, const std::string& parentText, const std::string& childKey,
                          const std::string& childText) {
    addNode(0, parentKey, parentText);
    if (m_keys.contains(parentKey)) addNode(m_keys[parentKey], childKey, childText);
    return count();
  }
  void addNode(std::int32_t parent, const std::string& key, const std::string& nodeText) {
    bool isNumber = true;
    for (const char c : key)
      isNumber = isNumber && c >= '0' && c <= '9';
    if (isNumber || m_keys.contains(key)) return;
    m_nodes.push_back({parent, nodeText});
    m_keys[key] = count();
  }

  std::map<std::string, std::int32_t> m_keys;
  std::vector<Node> m_nodes;
};

/// Texts that collide with each other, with numbers and with keys of the other kind as often as possible.
std::string randomText(std::mt19937& random) {
  std::string text;
  for (auto length = random() % 4; length > 0; --length)
    text += "a1122j"[random() % 6];
  constexpr std::array kSpecial = {"QUIT", "quit"};
  return random() % 20 == 0 ? kSpecial[random() % kSpecial.size()] : text;
}

TEST_F(AddToTreeViewTest, AgreesWithThePlainRulesOnRandomSessions) {
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    std::mt19937 random(seed);
    std::vector<UserAct> records(1 + random() % 1200);
    for (UserAct& record : records)
      for (std::string* part : {&record.Name, &record.IP, &record.LogonTime})
        *part = randomText(random);
    write(records);
    const int layout = static_cast<int>(seed % kTreeLayoutCount);
    const bool displaysQuitUsers = seed % 3 != 0;
    build(layout, displaysQuitUsers);

    PlainTree plain;
    Indexes indexes;
    std::map<std::int32_t, std::int32_t> firstRecords;
    for (const UserAct& record : records) {
      const auto recordNumber = static_cast<std::int32_t>(indexes.size() + 1);
      const bool isShown = displaysQuitUsers || record.Name != "QUIT";
      indexes.push_back(isShown ? plain.add(layout, record, recordNumber) : plain.count());
      firstRecords.try_emplace(indexes.back(), recordNumber);
    }
    ASSERT_EQ(text(), plain.text()) << "seed " << seed;
    ASSERT_EQ(treeIndexes(), indexes) << "seed " << seed;
    for (std::int32_t node = 1; node <= tree.nodeCount(); ++node) {
      ASSERT_EQ(tree.recordOf(node), firstRecords[node]) << "seed " << seed << ", node " << node;
      ASSERT_EQ(tree.childNode(tree.parentOf(node), tree.rowOf(node)), node) << "seed " << seed;
    }
  }
}

}  // namespace
}  // namespace quorvel::test
