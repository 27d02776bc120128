// The nodes of the session tree: parents (one per user name or address) and their children (one per session).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// Nodes are numbered from 1 in the order they were added, parents and children alike; 0 stands for "no node".
/// Every node has a key, unique in the tree, by which children find their parent: a prefix and the text for a parent;
/// a prefix, the record number and the text, with nothing between them, for a child. Keys are rebuilt from these parts
/// when needed and never stored: a session costs its text and about 22 bytes.
/// A question outside its range is answered with 0, false or an empty text. For one thread only: the first question
/// for a child after a change sorts the lists of children.
class SessionTree {
 public:
  /// What keys begin with. The texts must outlive the tree.
  struct KeyPrefixes {
    std::string_view parent;
    std::string_view child;
  };

  SessionTree() = default;
  SessionTree(const SessionTree&) = delete;
  SessionTree& operator=(const SessionTree&) = delete;

  /// Removes all nodes and decides how the keys of the next ones begin.
  void clear(KeyPrefixes prefixes = {});
  /// Both return false, and add nothing, when the key is empty, consists of the digits 0 to 9 alone, or is already used
  /// by any node, parent or child. Keys differ when their case does.
  bool addParent(std::string_view text);
  /// Fails as well when no node has the key a parent of parentText would have. That node is a parent, save where the
  /// parent's name happened to be the key of a child: the session then hangs below that child.
  /// recordNumber: the record of the session, from 1.
  bool addChild(std::string_view parentText, std::int32_t recordNumber, std::string_view text);
  /// Called for each record in order, once its nodes are added (or not): its tree index is nodeCount().
  void noteRecord(std::int32_t recordNumber);
  /// Ends adding and gives back the memory that only adding needs: nothing can be added until the next clear().
  void seal();

  [[nodiscard]] std::int32_t nodeCount() const { return static_cast<std::int32_t>(m_nodes.size()); }
  [[nodiscard]] std::int32_t parentCount() const { return childCount(0); }
  [[nodiscard]] std::int32_t parentNode(std::int32_t row) const { return childNode(0, row); }  ///< row from 0
  /// Of node 0: the number of parents.
  [[nodiscard]] std::int32_t childCount(std::int32_t parentNode) const;
  [[nodiscard]] std::int32_t childNode(std::int32_t parentNode, std::int32_t row) const;  ///< row from 0
  [[nodiscard]] std::int32_t parentOf(std::int32_t node) const;                           ///< 0 for a parent
  [[nodiscard]] std::int32_t rowOf(std::int32_t node) const;     ///< among its siblings, from 0
  [[nodiscard]] std::string_view text(std::int32_t node) const;  ///< valid until the tree changes

  [[nodiscard]] bool isChecked(std::int32_t node) const;
  void setChecked(std::int32_t node, bool checked);
  void uncheckAll() { m_checked.clear(); }

  /// The first record whose tree index is this node; 0 for none.
  [[nodiscard]] std::int32_t recordOf(std::int32_t node) const;
  /// Number of the last record noted: no later record was asked for its nodes.
  [[nodiscard]] std::int32_t lastNotedRecord() const { return m_lastNotedRecord; }

 private:
  struct Node {
    std::uint32_t textEnd = 0;  ///< in m_texts; the text begins where that of the node before ends
    std::int32_t parent = 0;    ///< 0 for a parent
    std::int32_t record = 0;    ///< of a child: part of its key; of a parent: the first record noted for it, or 0
  };
  struct Slot {
    std::int32_t node = 0;  ///< 0: free
    std::uint32_t hash = 0;
  };

  [[nodiscard]] bool isSealed() const { return m_slots.empty() && !m_nodes.empty(); }
  [[nodiscard]] bool has(std::int32_t node) const { return node >= 1 && node <= nodeCount(); }
  [[nodiscard]] const Node& at(std::int32_t node) const { return m_nodes[static_cast<std::size_t>(node) - 1]; }
  void makeParentKey(std::string& key, std::string_view text) const;
  void makeChildKey(std::string& key, std::int32_t recordNumber, std::string_view text) const;
  void makeKey(std::string& key, std::int32_t node) const;
  bool addNode(std::int32_t parent, std::int32_t recordNumber, std::string_view text);
  [[nodiscard]] Slot& findSlot(std::string_view key, std::uint32_t hash);
  void makeRoomForOneMore();
  void sortChildren() const;

  KeyPrefixes m_prefixes;
  std::vector<Node> m_nodes;
  std::string m_texts;
  std::vector<bool> m_checked;  ///< by node number; nodes behind the end are not checked
  std::int32_t m_lastNotedRecord = 0;

  std::vector<Slot>
      m_slots;        ///< open addressing over all keys; a power of two; empty before the first node and when sealed
  std::string m_key;  ///< of the node to be added
  std::string m_usedKey;  ///< of a node it is compared with

  // Children of all nodes, grouped by parent, each group in ascending order. Empty starts: to be sorted again.
  mutable std::vector<std::int32_t> m_childStarts;
  mutable std::vector<std::int32_t> m_children;
};

}  // namespace quorvel
