// The finder, the filters and the counter written down literally: slow, simple, and sharing nothing with the program
// but the wish to get the same results.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "classic/counter/transfer_count.h"
#include "classic/filter/session_filter.h"
#include "classic/find/user_act.h"

namespace quorvel::test {

/// Lower case of Windows-1252 text, from a spelled-out alphabet.
[[nodiscard]] std::string lowerCase(std::string_view text);

/// The records of every session of the log, in log order, by block-wise searches.
[[nodiscard]] std::vector<UserAct> scanSessions(std::string_view log, bool trunkLongUsernames);

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
