// Reads single lines of a log again, the way they were read into the tables.
#pragma once

#include <atomic>
#include <string_view>

#include "grammar/grammar.h"
#include "log/file_system.h"

namespace quorvel {

/// Knows the grammar and the dialect that the beginning of a log settles.
class LineParser {
 public:
  LineParser() = default;
  /// Looks at the first lines of the log; without a grammar that reads them all lines are Unknown.
  [[nodiscard]] static Result<LineParser> of(const File& log, const std::atomic<bool>& isCancelled);

  /// Texts of the event hold as long as the line.
  [[nodiscard]] Event parse(std::string_view line);

 private:
  Recognised m_recognised;
};

}  // namespace quorvel
