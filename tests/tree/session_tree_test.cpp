#include "tree/session_tree.h"

#include <gtest/gtest.h>

#include "tests/tree/tree_text.h"

namespace quorvel::test {
namespace {

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

TEST(SessionTree, KeepsCheckMarksAndTakesNodesUntilCleared) {
  SessionTree tree;
  tree.addParent("ann");
  tree.addParent("bob");
  EXPECT_FALSE(tree.addChild("nobody", 1, "x"));
  tree.setChecked(2, true);
  EXPECT_EQ(tree.parentCount(), 2);
  tree.addParent("carl");
  EXPECT_EQ(tree.parentCount(), 3) << "asked again";
  EXPECT_TRUE(!tree.isChecked(1) && tree.isChecked(2) && !tree.isChecked(3));
  tree.uncheckAll();
  EXPECT_FALSE(tree.isChecked(2));

  tree.setChecked(1, true);
  tree.seal();
  EXPECT_FALSE(tree.addParent("dora"));
  EXPECT_FALSE(tree.addChild("ann", 1, "x"));
  EXPECT_EQ(treeText(tree), "1 ann\n2 bob\n3 carl\n");
  tree.clear();
  EXPECT_TRUE(tree.addParent("bob"));
  EXPECT_EQ(treeText(tree), "1 bob\n");
  EXPECT_FALSE(tree.isChecked(1));
}

}  // namespace
}  // namespace quorvel::test
