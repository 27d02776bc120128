// An answer as text for people: aligned columns, nothing that a terminal would obey.
#pragma once

#include "report/output.h"
#include "report/report.h"

namespace quorvel {

struct TextOptions {
  std::size_t width = 0;  ///< of the terminal, in characters: tables are cut to it; 0: they are not
  bool isColoured = false;
};

/// The title stands above several parts only: a table alone is easily cut and sorted by other programs.
Status writeText(const Report& report, const TextOptions& options, Output& output);

/// How many columns of a terminal a text takes that has no control characters.
[[nodiscard]] std::size_t displayWidth(std::string_view utf8);
/// text cut to that width, its last character then an ellipsis.
[[nodiscard]] std::string cutToWidth(std::string_view utf8, std::size_t width);

}  // namespace quorvel
