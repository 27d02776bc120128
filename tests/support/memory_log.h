// A log that lives in memory.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "log/log_file.h"
#include "tests/support/memory_files.h"

namespace quorvel::test {

/// A log of this text, opened, to which its server has added since.
[[nodiscard]] inline LogFile openLog(const std::string& text, std::string_view added = {}) {
  MemoryFiles files;
  files.put("a.log", text);
  LogFile log = std::move(LogFile::open(files, "a.log").value());
  (void)files.open("a.log", OpenMode::Append).value()->append(added, {});
  return log;
}

}  // namespace quorvel::test
