// The nodes of the session tree: parents (one per user name or address) and their children (one per session).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// Nodes are numbered from 1 in the order they were added, parents and children alike; 0 stands for "no node".
/// Small: well under 100 bytes a session, keys included.
class SessionTree {
 public:
  SessionTree();
  ~SessionTree();
  SessionTree(const SessionTree&) = delete;
  SessionTree& operator=(const SessionTree&) = delete;

  void clear();
  /// Both return false, and add nothing, for a key that is empty, purely numeric or already used by any node;
  /// addChild also when no node has parentKey. Keys differ when their case does.
  bool addParent(std::string_view key, std::string_view text);
  bool addChild(std::string_view parentKey, std::string_view key, std::string_view text);

  [[nodiscard]] std::int32_t nodeCount() const;
  [[nodiscard]] std::int32_t parentCount() const;
  [[nodiscard]] std::int32_t parentNode(std::int32_t row) const;  ///< row from 0
  [[nodiscard]] std::int32_t childCount(std::int32_t parentNode) const;
  [[nodiscard]] std::int32_t childNode(std::int32_t parentNode, std::int32_t row) const;  ///< row from 0
  [[nodiscard]] std::int32_t parentOf(std::int32_t node) const;                           ///< 0 for a parent
  [[nodiscard]] std::int32_t rowOf(std::int32_t node) const;     ///< among its siblings, from 0
  [[nodiscard]] std::string_view text(std::int32_t node) const;  ///< valid until the tree changes

  [[nodiscard]] bool isChecked(std::int32_t node) const;
  void setChecked(std::int32_t node, bool checked);
  void uncheckAll();

  /// The first record whose tree index is this node; 0 for none.
  [[nodiscard]] std::int32_t recordOf(std::int32_t node) const;
  /// Called for each record in order with the node count of that moment; keeps the first record of each node.
  void noteRecord(std::int32_t node, std::int32_t recordNumber);
};

}  // namespace quorvel
