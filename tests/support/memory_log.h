// A log that lives in memory.
#pragma once

#include <string>
#include <utility>

#include "core/log_file.h"
#include "tests/support/memory_files.h"

namespace quorvel::test {

/// A log of this text, opened.
[[nodiscard]] inline LogFile openLog(const std::string& text) {
  MemoryFiles files;
  files.put("a.log", text);
  return std::move(LogFile::open(files, "a.log").value());
}

}  // namespace quorvel::test
