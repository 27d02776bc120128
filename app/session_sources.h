// Which sessions of the users file a command works on.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/settings.h"
#include "classic/find/user_act.h"
#include "classic/find/users_file.h"
#include "classic/lines/session_lines.h"
#include "classic/tree/session_tree.h"

namespace quorvel {

/// A user's name, as a command line gives it, in the form that records have: cut where they cut long names.
[[nodiscard]] std::string nameInRecords(const Settings& settings, const std::string& name);

/// Chooses sessions of a users file, which must outlive them.
using SessionChoice = std::function<std::unique_ptr<SessionList>(UsersFile& users)>;

/// Just this one, wherever it comes from.
class OneSession final : public SessionList {
 public:
  explicit OneSession(const UserAct& session) : m_session(session) {}

  [[nodiscard]] std::size_t size() const override { return 1; }
  [[nodiscard]] LogPosition position(std::size_t) const override { return m_session.Position; }
  [[nodiscard]] const UserAct& session(std::size_t) override { return m_session; }

 private:
  const UserAct& m_session;
};

/// All records in order for which isChosen answers true. It is asked for every record, once.
[[nodiscard]] std::unique_ptr<SessionList> chosenSessions(UsersFile& users,
                                                          const std::function<bool(const UserAct&)>& isChosen);

/// The first record of each ticked node, in node order; nodes without a record are passed over.
[[nodiscard]] std::unique_ptr<SessionList> checkedSessions(UsersFile& users, const SessionTree& tree);

}  // namespace quorvel
