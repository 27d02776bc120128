// Which sessions of the users file a command works on. All records are read one by one, never collected.
#pragma once

#include <functional>
#include <string>

#include "app/settings.h"
#include "classic/find/session_lines.h"
#include "classic/find/user_act.h"
#include "classic/find/users_file.h"
#include "classic/tree/session_tree.h"

namespace quorvel {

/// A user's name, as a command line gives it, in the form that records have: cut where they cut long names.
[[nodiscard]] std::string nameInRecords(const Settings& settings, const std::string& name);

/// All records in order for which isChosen answers true. It is asked for every record, once.
[[nodiscard]] SessionSource chosenSessions(UsersFile& users, std::function<bool(const UserAct&)> isChosen);

/// The first record of each ticked node, in node order; nodes without a record are passed over. users and tree must
/// outlive the source.
[[nodiscard]] SessionSource checkedSessions(UsersFile& users, const SessionTree& tree);

/// Just this one.
[[nodiscard]] SessionSource oneSession(const UserAct& session);

}  // namespace quorvel
