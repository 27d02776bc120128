// --follow and --state: rows of a log as they come, in this run and the next.
#pragma once

#include <functional>
#include <string>

#include "cli/named_commands.h"
#include "cli/request.h"
#include "log/following_source.h"

namespace quorvel {

/// Where a run ended.
struct FollowState {
  LogPlace place;
  LogTime from = kNoTime;    ///< first stamp of the oldest file that an unfinished session needs
  std::uint64_t output = 0;  ///< length of the output file
};

/// As it stands in the file. Text that is no state is none.
[[nodiscard]] std::string stateText(const FollowState& state);
[[nodiscard]] std::optional<FollowState> parseFollowState(std::string_view text);

/// Writes what the request asks for, looking for more twice a second, until it is interrupted or, where it does not
/// follow, until nothing more comes. A row is written one look after it was told, for the next line may add to it; a
/// session when it has ended. Returns the exit status; tell takes sentences.
[[nodiscard]] int runFollowing(const Request& request, const Shell& shell,
                               const std::function<Scope(const Activity&)>& scopeFor,
                               const std::function<void(const std::string&)>& tell);

}  // namespace quorvel
