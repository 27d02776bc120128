// quorvel digest: what is new in logs since the last time, and a small file that remembers what was told.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cli/request.h"
#include "log/file_system.h"
#include "report/report.h"

namespace quorvel {

/// What was told: how far each log had grown, and which alerts.
struct DigestState {
  struct Log {
    std::string name;
    std::string first;  ///< time of its first line: another log of that name has another
    std::uint64_t bytes = 0;
  };
  std::vector<Log> logs;
  std::vector<std::uint64_t> alerts;  ///< hashes of what each was; the newest kMostAlerts
};

/// As it stands in the file. Text that is no state reads as an empty one.
[[nodiscard]] std::string stateText(const DigestState& state);
[[nodiscard]] DigestState parseState(std::string_view text);

struct Digest {
  Report report;
  bool holdsRule = false;  ///< one that was not told before
  DigestState state;       ///< with what this digest tells
};

/// Fails where the state file is there and cannot be read.
[[nodiscard]] Result<Digest> makeDigest(const Request& request, FileSystem& files, const Activity& activity,
                                        const Scope& scope);
/// Once the digest is written: what it told is not told again. Does nothing without a state file.
Status keepDigestState(const Request& request, FileSystem& files, const Digest& digest);

}  // namespace quorvel
