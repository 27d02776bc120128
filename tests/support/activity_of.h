// Tables of a log that stands in a test.
#pragma once

#include <string>
#include <string_view>

#include "activity/read_activity.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {

/// Reads the whole file.
inline Activity readActivity(const std::filesystem::path& path) {
  ActivityReader reader;
  auto logs = openLogs(systemFiles(), path, path.filename().string(), {path.parent_path()});
  if (!logs.isOk()) return {};
  for (const auto& log : logs.value())
    (void)reader.read(*log, {});
  return reader.snapshot();
}

}  // namespace quorvel::test
