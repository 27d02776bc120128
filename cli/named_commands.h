// The commands with a name: quorvel overview LOG..., sessions, logins, files, transfers, traffic, check, export,
// digest.
#pragma once

#include <functional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

#include "log/file_system.h"

namespace quorvel {

/// What the shell gives a command.
struct Shell {
  FileSystem& files;
  std::ostream& errors;                 ///< messages go there, a sentence a line
  std::size_t width = 0;                ///< of standard output, where that is a terminal; else 0
  bool isColoured = false;              ///< standard output may be
  std::function<bool()> isInterrupted;  ///< may be empty: never
};

/// Whether text is the name of a command. A build without CLI11 has none.
[[nodiscard]] bool isNamedCommand(std::string_view text);

/// Runs the command that arguments, those behind the program's name, begin with, and returns the exit status: 0 done, 1
/// something could not be done, 2 wrong arguments, 3 a rule held. The first argument is a command's name.
[[nodiscard]] int runNamedCommand(std::span<const std::string> arguments, const Shell& shell);

}  // namespace quorvel
