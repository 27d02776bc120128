// Walks over the lines of an open file.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string_view>

#include "log/file_system.h"

namespace quorvel {

/// Calls take for each line that begins in [from, to), with its offset (from 0) and its text without the line end;
/// false ends the walk. from is the start of a line. A line longer than a megabyte comes cut to its first one. Comes to
/// an end soon when isCancelled becomes true.
Status walkLines(const File& file, std::uint64_t from, std::uint64_t to, const std::atomic<bool>& isCancelled,
                 const std::function<bool(std::uint64_t offset, std::string_view line)>& take);

}  // namespace quorvel
