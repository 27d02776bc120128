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

UserAct session(std::string name, std::string ip, std::string logonTime) {
  UserAct record;
  record.Name = std::move(name);
  record.IP = std::move(ip);
  record.LogonTime = std::move(logonTime);
  return record;
}

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

TEST_F(AddToTreeViewTest, BuildsEachLayoutInRecordOrder) {
  write("bob 10.0.0.2 T1\nann 10.0.0.1 T2\nbob 10.0.0.1 T3\nBob 10.0.0.2 T4\n");
  const std::array<const char*, kTreeLayoutCount> expected = {
      "1 bob\n  2 T1\n  5 T3\n3 ann\n  4 T2\n6 Bob\n  7 T4\n",
      "1 bob\n  2 10.0.0.2\n  5 10.0.0.1\n3 ann\n  4 10.0.0.1\n6 Bob\n  7 10.0.0.2\n",
      "1 10.0.0.2\n  2 bob\n  6 Bob\n3 10.0.0.1\n  4 ann\n  5 bob\n",
      "1 10.0.0.2\n  2 T1\n  6 T4\n3 10.0.0.1\n  4 T2\n  5 T3\n",
  };
  const std::array<Indexes, kTreeLayoutCount> indexes = {{{2, 4, 5, 7}, {2, 4, 5, 7}, {2, 4, 5, 6}, {2, 4, 5, 6}}};
  for (int layout = 0; layout < kTreeLayoutCount; ++layout) {
    build(layout);
    EXPECT_EQ(text(), expected[static_cast<std::size_t>(layout)]) << layout;
    EXPECT_EQ(treeIndexes(), indexes[static_cast<std::size_t>(layout)]) << layout;
  }
}

TEST_F(AddToTreeViewTest, NamesTheFourLayouts) {
  EXPECT_EQ(treeHeader(0), "Username\r\n|--Logontime");
  EXPECT_EQ(treeHeader(1), "Username\r\n|--IP");
  EXPECT_EQ(treeHeader(2), "IP\r\n|--Username");
  EXPECT_EQ(treeHeader(3), "IP\r\n|--Logontime");
  EXPECT_EQ(treeHeader(-1), "");
  EXPECT_EQ(treeHeader(4), "");
}

TEST_F(AddToTreeViewTest, AChildWithAUsedKeyIsLeftOutAndItsRecordNamesTheNodeBefore) {
  std::string sessions = "2john 10.0.0.1 T\n";
  for (int i = 2; i <= 11; ++i)
    sessions += "ann 10.0.0.1 T\n";
  write(sessions + "john 10.0.0.1 T\njohn 10.0.0.9 T\n");
  build(2);
  const Indexes indexes = treeIndexes();
  EXPECT_EQ(indexes[10], 12);
  EXPECT_EQ(indexes[11], 12) << "record 12 has no node of its own: its key 12john is that of record 1";
  EXPECT_EQ(indexes[12], 14);
  EXPECT_EQ(tree.recordOf(12), 11);
  EXPECT_EQ(tree.text(14), "john");
}

TEST_F(AddToTreeViewTest, NamesOfDigitsGetNoNodesAsParents) {
  write("4711 10.0.0.1 T1\nann 10.0.0.1 T2\n");
  build(0);
  EXPECT_EQ(text(), "1 ann\n  2 T2\n");
  EXPECT_EQ(treeIndexes(), (Indexes{0, 2}));
  build(2);
  EXPECT_EQ(text(), "1 10.0.0.1\n  2 ann\n");
  EXPECT_EQ(treeIndexes(), (Indexes{1, 2}));
  EXPECT_EQ(tree.recordOf(1), 1) << "a parent that a record names";
}

TEST_F(AddToTreeViewTest, HidesSessionsNamedQuitExactly) {
  write("QUIT 10.0.0.1 T1\nann 10.0.0.1 T2\nQUIT 10.0.0.1 T3\nquit 10.0.0.1 T4\n");
  build(0, false);
  EXPECT_EQ(text(), "1 ann\n  2 T2\n3 quit\n  4 T4\n");
  EXPECT_EQ(treeIndexes(), (Indexes{0, 2, 2, 4}));
  EXPECT_EQ(tree.recordOf(2), 2);
  build(0, true);
  EXPECT_EQ(text(), "1 QUIT\n  2 T1\n  5 T3\n3 ann\n  4 T2\n6 quit\n  7 T4\n");
}

TEST_F(AddToTreeViewTest, StoppingLeavesTheRestOfTheRecordsAlone) {
  write("ann i T1\nbob i T2\nann i T3\nbob i T4\n");
  build(0, true, 2);
  EXPECT_EQ(text(), "1 ann\n  2 T1\n3 bob\n  4 T2\n");
  EXPECT_EQ(treeIndexes(), (Indexes{2, 4, kOldIndex, kOldIndex}));
  EXPECT_EQ(tree.lastNotedRecord(), 2);
}

TEST_F(AddToTreeViewTest, AnUnknownLayoutChangesNothing) {
  write("ann i T1\n");
  build(0);
  write("bob i T1\n");
  for (const int layout : {-1, 4, 65536})
    build(layout);
  EXPECT_EQ(text(), "1 ann\n  2 T1\n");
  EXPECT_EQ(treeIndexes(), Indexes{kOldIndex});
}

TEST_F(AddToTreeViewTest, AnEmptyFileEmptiesTheTree) {
  write("ann i T1\n");
  build(0);
  folder.write("users.qva", "");
  build(0);
  EXPECT_EQ(text(), "");
}

TEST_F(AddToTreeViewTest, OnlyTheTreeIndexOfARecordChanges) {
  UserAct record = session("ann", "10.0.0.1", "T1 BAD_PASSWORD");
  record.Position = 123456789;
  record.NumberInLog = "(000001)";
  write({record, session("QUIT", "", "")});
  build(1);
  record.LogonNo = 1;
  record.TreeIndex = 2;
  auto users = UsersFile::open(systemFiles(), path);
  EXPECT_EQ(users.value().read(1), record);
  EXPECT_EQ(users.value().treeIndex(1), 2);
  EXPECT_EQ(users.value().treeIndex(3), std::nullopt);
}

TEST_F(AddToTreeViewTest, ADamagedRecordIsLeftAsItIs) {
  write("ann i T1\nbob i T2\ncarl i T3\n");
  std::string bytes = folder.read("users.qva");
  bytes[kRecordSize + 5] = '\xFF';  // the name's length word points behind the record
  folder.write("users.qva", bytes);
  build(0);
  EXPECT_EQ(text(), "1 ann\n  2 T1\n3 carl\n  4 T3\n");
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
  return random() % 20 == 0 ? std::string(kQuit) : text;
}

TEST_F(AddToTreeViewTest, AgreesWithThePlainRulesOnRandomSessions) {
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    std::mt19937 random(seed);
    std::vector<UserAct> records(1 + random() % 1200);
    for (UserAct& record : records)
      record = session(randomText(random), randomText(random), randomText(random));
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
    for (std::int32_t node = 1; node <= tree.nodeCount(); ++node)
      ASSERT_EQ(tree.recordOf(node), firstRecords[node]) << "seed " << seed << ", node " << node;
  }
}

}  // namespace
}  // namespace quorvel::test
