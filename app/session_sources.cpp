#include "app/session_sources.h"

namespace quorvel {
namespace {

/// Records of the users file, of which only number and position are kept.
class ChosenSessions final : public SessionList {
 public:
  explicit ChosenSessions(UsersFile& users) : m_users(users) {}

  void add(std::int32_t recordNumber, LogPosition position) {
    m_records.push_back(recordNumber);
    m_positions.push_back(position);
  }

  [[nodiscard]] std::size_t size() const override { return m_records.size(); }
  [[nodiscard]] LogPosition position(std::size_t index) const override { return m_positions[index]; }
  [[nodiscard]] const UserAct& session(std::size_t index) override {
    static const UserAct kNone;
    const UserAct* const record = m_users.read(m_records[index]);
    return record != nullptr ? *record : kNone;
  }

 private:
  UsersFile& m_users;
  std::vector<std::int32_t> m_records;
  std::vector<LogPosition> m_positions;
};

/// The first record of each node, by node; 0 where a node has none.
std::vector<std::int32_t> firstRecords(UsersFile& users, const SessionTree& tree) {
  std::vector<std::int32_t> records(static_cast<std::size_t>(tree.nodeCount()) + 1);
  for (std::int32_t number = 1; number <= users.recordCount(); ++number) {
    const std::int32_t node = users.treeIndex(number).value_or(0);
    if (node < 1 || node > tree.nodeCount()) continue;
    std::int32_t& first = records[static_cast<std::size_t>(node)];
    if (first == 0) first = number;
  }
  return records;
}

}  // namespace

std::string nameInRecords(const Settings& settings, const std::string& name) {
  return settings.readFlag("MAIN", "TrunkLongUsernames") ? std::string(trunkedName(name)) : name;
}

std::unique_ptr<SessionList> chosenSessions(UsersFile& users, const std::function<bool(const UserAct&)>& isChosen) {
  auto sessions = std::make_unique<ChosenSessions>(users);
  for (std::int32_t number = 1; number <= users.recordCount(); ++number) {
    const UserAct* const record = users.read(number);
    if (record != nullptr && isChosen(*record)) sessions->add(number, record->Position);
  }
  return sessions;
}

std::unique_ptr<SessionList> checkedSessions(UsersFile& users, const SessionTree& tree) {
  auto sessions = std::make_unique<ChosenSessions>(users);
  std::vector<std::int32_t> found;  // empty until needed
  for (std::int32_t node = 1; node <= tree.nodeCount(); ++node) {
    if (!tree.isChecked(node)) continue;
    // The tree knows the record, unless the users file was changed behind its back or the build of the tree stopped
    // early.
    std::int32_t number = tree.recordOf(node);
    if (number == 0 || users.treeIndex(number) != node) {
      if (found.empty()) found = firstRecords(users, tree);
      number = found[static_cast<std::size_t>(node)];
    }
    if (number == 0) continue;
    const UserAct* const record = users.read(number);
    if (record == nullptr) break;
    sessions->add(number, record->Position);
  }
  return sessions;
}

}  // namespace quorvel
