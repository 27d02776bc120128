// The text of a log around a byte position.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "log/file_system.h"

namespace quorvel {

/// The 500 bytes before the position, an empty line, then up to 4500 bytes from the position on. Positions count from
/// 1; one below 1001 is raised to 1001. Bytes beyond the end of the log are left out. Empty, meaning that what is
/// shown stays: no log chosen, a text that is no number of 64 bits, a log that cannot be opened or read.
[[nodiscard]] std::optional<std::string> textAroundPosition(FileSystem& files, const std::filesystem::path& log,
                                                            std::string_view position);

}  // namespace quorvel
