// The lines that start every report the program saves: which log, and when.
#pragma once

#include <filesystem>
#include <string>

#include "log/clock.h"

namespace quorvel {

/// "Log: " and the log's path, "Processed: " and date and time, both values from column 12, then an empty line.
[[nodiscard]] std::string reportHead(const std::filesystem::path& log, const DateTime& now);

}  // namespace quorvel
