// What the filters and the counter take from a log for one session, as plain loops over its lines.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/user_act.h"
#include "counter/transfer_count.h"
#include "filter/session_filter.h"

namespace quorvel::test {

/// Lines of the log from 50 bytes before the session's position on that contain its number or the server start mark,
/// without their line ends. Of a session of unknown position there are none, here and below.
[[nodiscard]] std::vector<std::string> linesAbout(std::string_view log, const UserAct& session);

[[nodiscard]] std::vector<std::string> entireSession(std::string_view log, const UserAct& session);

/// The lines the command filter writes, its empty lines included.
[[nodiscard]] std::vector<std::string> sessionCommands(std::string_view log, const UserAct& session,
                                                       CommandFilterOptions switches);

struct CountedTransfers {
  TransferCount totals;
  std::vector<std::string> badLines;  ///< failed transfers, from their 28th character on
};
[[nodiscard]] CountedTransfers sessionTransfers(std::string_view log, const UserAct& session);
[[nodiscard]] CountedTransfers allTransfers(std::string_view log);

}  // namespace quorvel::test
