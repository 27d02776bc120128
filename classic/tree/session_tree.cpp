#include "classic/tree/session_tree.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>

#include "log/seeded_hash.h"

namespace quorvel {
namespace {

constexpr std::size_t kFirstSlotCount = 64;

bool isUsableAsKey(std::string_view key) {
  return key.find_first_not_of("0123456789") != std::string_view::npos;
}

std::uint32_t hashOf(std::string_view key) {
  return static_cast<std::uint32_t>(seededHash(key));
}

}  // namespace

void SessionTree::clear(KeyPrefixes prefixes) {
  m_prefixes = prefixes;
  m_nodes.clear();
  m_texts.clear();
  m_checked.clear();
  m_slots.clear();
  m_childStarts.clear();
  m_lastNotedRecord = 0;
}

bool SessionTree::addParent(std::string_view text) {
  makeParentKey(m_key, text);
  return addNode(0, 0, text);
}

bool SessionTree::addChild(std::string_view parentText, std::int32_t recordNumber, std::string_view text) {
  if (m_slots.empty()) return false;
  makeParentKey(m_key, parentText);
  const std::int32_t parent = findSlot(m_key, hashOf(m_key)).node;
  if (parent == 0) return false;
  makeChildKey(m_key, recordNumber, text);
  return addNode(parent, recordNumber, text);
}

bool SessionTree::addNode(std::int32_t parent, std::int32_t recordNumber, std::string_view text) {
  const bool isFull = nodeCount() == std::numeric_limits<std::int32_t>::max() ||
                      text.size() > std::numeric_limits<std::uint32_t>::max() - m_texts.size();
  if (isFull || isSealed() || !isUsableAsKey(m_key)) return false;
  makeRoomForOneMore();
  const std::uint32_t hash = hashOf(m_key);
  Slot& slot = findSlot(m_key, hash);
  if (slot.node != 0) return false;
  m_texts.append(text);
  m_nodes.push_back({static_cast<std::uint32_t>(m_texts.size()), parent, recordNumber});
  slot = {nodeCount(), hash};
  m_childStarts.clear();
  return true;
}

void SessionTree::noteRecord(std::int32_t recordNumber) {
  m_lastNotedRecord = recordNumber;
  if (!m_nodes.empty() && m_nodes.back().record == 0) m_nodes.back().record = recordNumber;
}

void SessionTree::seal() {
  m_slots = std::vector<Slot>();
  m_nodes.shrink_to_fit();
  m_texts.shrink_to_fit();
}

std::int32_t SessionTree::childCount(std::int32_t parentNode) const {
  if (parentNode != 0 && !has(parentNode)) return 0;
  sortChildren();
  const auto start = m_childStarts.begin() + parentNode;
  return start[1] - start[0];
}

std::int32_t SessionTree::childNode(std::int32_t parentNode, std::int32_t row) const {
  if (row < 0 || row >= childCount(parentNode)) return 0;
  return m_children[static_cast<std::size_t>(m_childStarts[static_cast<std::size_t>(parentNode)] + row)];
}

std::int32_t SessionTree::parentOf(std::int32_t node) const {
  return has(node) ? at(node).parent : 0;
}

std::int32_t SessionTree::rowOf(std::int32_t node) const {
  if (!has(node)) return 0;
  sortChildren();
  const auto start = m_childStarts.begin() + at(node).parent;
  const auto first = m_children.begin() + start[0];
  return static_cast<std::int32_t>(std::lower_bound(first, m_children.begin() + start[1], node) - first);
}

std::string_view SessionTree::text(std::int32_t node) const {
  if (!has(node)) return {};
  const std::size_t begin = node == 1 ? 0 : at(node - 1).textEnd;
  return std::string_view(m_texts).substr(begin, at(node).textEnd - begin);
}

bool SessionTree::isChecked(std::int32_t node) const {
  return node >= 0 && static_cast<std::size_t>(node) < m_checked.size() && m_checked[static_cast<std::size_t>(node)];
}

void SessionTree::setChecked(std::int32_t node, bool checked) {
  if (!has(node)) return;
  if (m_checked.size() <= m_nodes.size()) m_checked.resize(m_nodes.size() + 1);
  m_checked[static_cast<std::size_t>(node)] = checked;
}

std::int32_t SessionTree::recordOf(std::int32_t node) const {
  return has(node) ? at(node).record : 0;
}

void SessionTree::makeParentKey(std::string& key, std::string_view text) const {
  key.assign(m_prefixes.parent).append(text);
}

void SessionTree::makeChildKey(std::string& key, std::int32_t recordNumber, std::string_view text) const {
  char digits[std::numeric_limits<std::int32_t>::digits10 + 2];
  const auto end = std::to_chars(std::begin(digits), std::end(digits), recordNumber).ptr;
  key.assign(m_prefixes.child).append(digits, end).append(text);
}

void SessionTree::makeKey(std::string& key, std::int32_t node) const {
  if (at(node).parent == 0) return makeParentKey(key, text(node));
  makeChildKey(key, at(node).record, text(node));
}

/// The slot of the node with that key, or the free one where it belongs. There must be a free slot.
SessionTree::Slot& SessionTree::findSlot(std::string_view key, std::uint32_t hash) {
  const std::size_t mask = m_slots.size() - 1;
  for (std::size_t index = hash & mask;; index = (index + 1) & mask) {
    Slot& slot = m_slots[index];
    if (slot.node == 0) return slot;
    if (slot.hash != hash) continue;
    makeKey(m_usedKey, slot.node);
    if (m_usedKey == key) return slot;
  }
}

/// At most three quarters of the slots are ever taken.
void SessionTree::makeRoomForOneMore() {
  if ((m_nodes.size() + 1) * 4 <= m_slots.size() * 3) return;
  std::vector<Slot> grown(std::max(kFirstSlotCount, m_slots.size() * 2));
  const std::size_t mask = grown.size() - 1;
  for (const Slot& slot : m_slots) {
    if (slot.node == 0) continue;
    std::size_t index = slot.hash & mask;
    while (grown[index].node != 0)
      index = (index + 1) & mask;
    grown[index] = slot;
  }
  m_slots = std::move(grown);
}

/// A counting sort: nodes that are visited in ascending order stay so within their group.
void SessionTree::sortChildren() const {
  if (!m_childStarts.empty()) return;
  m_childStarts.assign(m_nodes.size() + 2, 0);
  for (const Node& node : m_nodes)
    ++m_childStarts[static_cast<std::size_t>(node.parent) + 1];
  for (std::size_t i = 1; i < m_childStarts.size(); ++i)
    m_childStarts[i] += m_childStarts[i - 1];
  m_children.resize(m_nodes.size());
  std::vector<std::int32_t> next(m_childStarts.begin(), m_childStarts.end() - 1);
  for (std::int32_t node = 1; node <= nodeCount(); ++node)
    m_children[static_cast<std::size_t>(next[static_cast<std::size_t>(at(node).parent)]++)] = node;
}

}  // namespace quorvel
