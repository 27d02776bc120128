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
    tree.setChecked(node, true);
    EXPECT_TRUE(tree.text(node).empty() && !tree.isChecked(node)) << node;
    EXPECT_EQ(tree.childCount(node) + tree.parentOf(node) + tree.rowOf(node) + tree.recordOf(node), 0) << node;
    EXPECT_EQ(tree.childNode(0, node - 1) + tree.childNode(0, -1), 0) << node;
  }
}

TEST(SessionTree, KeepsCheckMarksAndTakesNodesUntilCleared) {
  SessionTree tree;
  tree.addParent("ann");
  tree.setChecked(1, true);
  EXPECT_EQ(treeText(tree), "1 ann\n");
  EXPECT_TRUE(tree.addParent("bob"));
  EXPECT_FALSE(tree.addChild("nobody", 1, "x"));
  EXPECT_TRUE(tree.isChecked(1) && !tree.isChecked(2));
  tree.seal();
  EXPECT_FALSE(tree.addParent("carl") || tree.addChild("ann", 1, "x"));
  EXPECT_EQ(treeText(tree), "1 ann\n2 bob\n");
  tree.clear();
  EXPECT_TRUE(tree.addParent("bob"));
  EXPECT_EQ(treeText(tree), "1 bob\n");
  EXPECT_FALSE(tree.isChecked(1));
}

}  // namespace
}  // namespace quorvel::test
