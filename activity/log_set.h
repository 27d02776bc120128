// Several files that form one log: rotated, packed, copied while they were written.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "activity/read_activity.h"
#include "log/log_source.h"

namespace quorvel {

/// One file of a set, in its place.
struct SetFile {
  std::unique_ptr<LogSource> source;  ///< at its first byte
  LogTime first = kNoTime;            ///< of its first line that has one
  std::uint64_t repeatedBytes = 0;    ///< at its beginning, whole lines: they stand in a file before it too
};

/// Puts files in the order of their first stamps, whatever their names say; those without a stamp stand last. Files
/// that begin with the same lines are compared: the longest comes first, and what the others share with it is
/// repeated. A source that cannot be rewound is put in its place by nothing: an error names it.
[[nodiscard]] Result<std::vector<SetFile>> orderSet(std::vector<std::unique_ptr<LogSource>> sources);

/// The file itself and those beside it that rotation made of the same log, in the order of their names: `server.log`,
/// `server.log.1`, `server.log.2.gz`, `server-20051104.log`; `ftp2005Nov04.log`, `ftp2005Nov05.log`.
[[nodiscard]] std::vector<std::filesystem::path> rotatedSiblings(const std::filesystem::path& path);
/// The name that all rotated files of a log share: "server.log" of each of the names above.
[[nodiscard]] std::string rotationStem(std::string_view fileName);

/// All plain files in a folder, in the order of their names; hidden ones are left out.
[[nodiscard]] std::vector<std::filesystem::path> filesOfFolder(const std::filesystem::path& folder);

}  // namespace quorvel
