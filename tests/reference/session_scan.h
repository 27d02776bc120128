// The session finder's scan over BlockSearch, step by step and without any shortcut.
#pragma once

#include <string_view>
#include <vector>

#include "core/user_act.h"
#include "tests/reference/block_search.h"

namespace quorvel::test {

/// The records of every session of the log, in log order.
[[nodiscard]] std::vector<UserAct> scanSessions(std::string_view log, bool trunkLongUsernames);

}  // namespace quorvel::test
