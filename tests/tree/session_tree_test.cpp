#include "tree/session_tree.h"

#include <gtest/gtest.h>

#include "tests/tree/tree_text.h"

namespace quorvel::test {
namespace {

TEST(SessionTree, RefusesParentsWithUnusableOrUsedKeys) {
  SessionTree tree;
  tree.clear({"", "a"});
  ASSERT_TRUE(tree.addParent("ann"));
  ASSERT_TRUE(tree.addChild("ann", 7, "10.0.0.1"));
  for (const char* refused : {"", "0", "007", "12345678901234567890", "ann", "a710.0.0.1"})
    EXPECT_FALSE(tree.addParent(refused)) << refused;
  for (const char* accepted : {"Ann", "12a", "-1", "1.5", " 1", "\xB2", "a710.0.0.2"})
    EXPECT_TRUE(tree.addParent(accepted)) << accepted;
  EXPECT_EQ(tree.nodeCount(), 9);
}

TEST(SessionTree, RefusesChildrenWithUnusableOrUsedKeys) {
  SessionTree tree;
  tree.clear({"a", ""});
  ASSERT_TRUE(tree.addParent("10.0.0.1"));
  ASSERT_TRUE(tree.addChild("10.0.0.1", 1, "2john"));
  EXPECT_FALSE(tree.addChild("10.0.0.1", 12, "john")) << "12john is used";
  EXPECT_FALSE(tree.addChild("10.0.0.1", 3, "")) << "3 is a number";
  EXPECT_FALSE(tree.addChild("10.0.0.1", 3, "55")) << "355 is a number";
  EXPECT_FALSE(tree.addChild("10.0.0.2", 4, "ann")) << "no such parent";
  EXPECT_TRUE(tree.addChild("10.0.0.1", 12, "John"));
  EXPECT_EQ(treeText(tree), "1 10.0.0.1\n  2 2john\n  3 John\n");
}

TEST(SessionTree, AParentNamedLikeAChildsKeyGathersItsSessionsBelowThatChild) {
  SessionTree tree;
  tree.clear({"", "a"});
  tree.addParent("ann");
  tree.addChild("ann", 1, "x");
  EXPECT_FALSE(tree.addParent("a1x"));
  EXPECT_TRUE(tree.addChild("a1x", 2, "y"));
  EXPECT_EQ(treeText(tree), "1 ann\n  2 x\n    3 y\n");
}

TEST(SessionTree, AnswersForRowsAndParentsAgreeWithEachOther) {
  SessionTree tree;
  tree.clear({"", "a"});
  for (std::int32_t record = 1; record <= 500; ++record) {
    const std::string name = "user" + std::to_string(record * record % 37);
    tree.addParent(name);
    ASSERT_TRUE(tree.addChild(name, record, "stamp"));
    ASSERT_GE(tree.parentCount(), 1);  // asked in between, to be answered anew later
  }
  std::int32_t nodes = 0;
  for (std::int32_t parent = 0; parent <= tree.nodeCount(); ++parent)
    for (std::int32_t row = 0; row < tree.childCount(parent); ++row, ++nodes) {
      const std::int32_t node = tree.childNode(parent, row);
      EXPECT_EQ(tree.parentOf(node), parent);
      EXPECT_EQ(tree.rowOf(node), row);
    }
  EXPECT_EQ(nodes, tree.nodeCount());
}

TEST(SessionTree, AnswersQuestionsOutsideItsRange) {
  SessionTree tree;
  EXPECT_EQ(tree.parentCount(), 0);
  tree.addParent("ann");
  for (const std::int32_t node : {-1, 2, 1000}) {
    EXPECT_EQ(tree.text(node), "");
    EXPECT_EQ(tree.childCount(node), 0);
    EXPECT_EQ(tree.parentOf(node) + tree.rowOf(node) + tree.recordOf(node), 0);
    tree.setChecked(node, true);
    EXPECT_FALSE(tree.isChecked(node));
  }
  EXPECT_EQ(tree.childNode(0, 1), 0);
  EXPECT_EQ(tree.childNode(0, -1), 0);
}

TEST(SessionTree, KeepsCheckMarksUntilClearedOrUnchecked) {
  SessionTree tree;
  tree.addParent("ann");
  tree.addParent("bob");
  tree.setChecked(2, true);
  tree.addParent("carl");
  EXPECT_FALSE(tree.isChecked(1));
  EXPECT_TRUE(tree.isChecked(2));
  EXPECT_FALSE(tree.isChecked(3));
  tree.uncheckAll();
  EXPECT_FALSE(tree.isChecked(2));
  tree.setChecked(1, true);
  tree.clear();
  tree.addParent("ann");
  EXPECT_FALSE(tree.isChecked(1));
}

TEST(SessionTree, TakesNoNodesBetweenSealingAndClearing) {
  SessionTree tree;
  tree.addParent("ann");
  tree.seal();
  EXPECT_FALSE(tree.addParent("bob"));
  EXPECT_FALSE(tree.addChild("ann", 1, "x"));
  EXPECT_EQ(treeText(tree), "1 ann\n");
  tree.clear();
  EXPECT_TRUE(tree.addParent("bob"));
  EXPECT_EQ(treeText(tree), "1 bob\n");
}

}  // namespace
}  // namespace quorvel::test
