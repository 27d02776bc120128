// Trees as indented text: one node a line, its number and its text, two blanks in front for each level.
#pragma once

#include <string>

#include "classic/tree/session_tree.h"

namespace quorvel::test {

inline std::string treeText(const SessionTree& tree, std::int32_t parent = 0, const std::string& indent = {}) {
  std::string text;
  for (std::int32_t row = 0; row < tree.childCount(parent); ++row) {
    const std::int32_t node = tree.childNode(parent, row);
    text += indent + std::to_string(node) + " " + std::string(tree.text(node)) + "\n";
    text += treeText(tree, node, indent + "  ");
  }
  return text;
}

}  // namespace quorvel::test
