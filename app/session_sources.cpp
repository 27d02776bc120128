#include "app/session_sources.h"

#include <utility>
#include <vector>

namespace quorvel {
namespace {

class CheckedSessions {
 public:
  CheckedSessions(UsersFile& users, const SessionTree& tree) : m_users(users), m_tree(tree) {}

  std::optional<UserAct> next() {
    while (m_node < m_tree.nodeCount()) {
      ++m_node;
      if (!m_tree.isChecked(m_node)) continue;
      const std::int32_t number = recordOf(m_node);
      if (number == 0) continue;
      const UserAct* const record = m_users.read(number);
      return record != nullptr ? std::optional(*record) : std::nullopt;
    }
    return std::nullopt;
  }

 private:
  /// The tree knows the record, unless the users file was changed behind its back or the build of the tree stopped
  /// early: then the file is searched, once for all nodes.
  [[nodiscard]] std::int32_t recordOf(std::int32_t node) {
    const std::int32_t known = m_tree.recordOf(node);
    if (known != 0 && m_users.treeIndex(known) == node) return known;
    if (m_firstRecords.empty()) findFirstRecords();
    return m_firstRecords[static_cast<std::size_t>(node)];
  }

  void findFirstRecords() {
    m_firstRecords.resize(static_cast<std::size_t>(m_tree.nodeCount()) + 1);
    for (std::int32_t n = 1; n <= m_users.recordCount(); ++n) {
      const std::int32_t node = m_users.treeIndex(n).value_or(0);
      if (node < 1 || node > m_tree.nodeCount()) continue;
      std::int32_t& first = m_firstRecords[static_cast<std::size_t>(node)];
      if (first == 0) first = n;
    }
  }

  UsersFile& m_users;
  const SessionTree& m_tree;
  std::int32_t m_node = 0;
  std::vector<std::int32_t> m_firstRecords;  ///< by node; empty until needed
};

}  // namespace

std::string nameInRecords(const Settings& settings, const std::string& name) {
  return settings.readFlag("MAIN", "TrunkLongUsernames") ? std::string(trunkedName(name)) : name;
}

SessionSource chosenSessions(UsersFile& users, std::function<bool(const UserAct&)> isChosen) {
  return [&users, isChosen = std::move(isChosen), number = std::int32_t{0}]() mutable -> std::optional<UserAct> {
    while (number < users.recordCount()) {
      const UserAct* const record = users.read(++number);
      if (record != nullptr && isChosen(*record)) return *record;
    }
    return std::nullopt;
  };
}

SessionSource checkedSessions(UsersFile& users, const SessionTree& tree) {
  return [sessions = CheckedSessions(users, tree)]() mutable { return sessions.next(); };
}

SessionSource oneSession(const UserAct& session) {
  return [left = std::optional(session)]() mutable { return std::exchange(left, std::nullopt); };
}

}  // namespace quorvel
