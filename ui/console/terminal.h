// The process's standard streams; one source per system.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quorvel {

/// Whether standard error is a terminal.
[[nodiscard]] bool isErrorOutputTerminal();

/// Ends the program with one line on standard error and status 1, whatever thread asks for it: where there is no memory
/// left nothing can be relied on to go on. What was written stays as it is.
[[noreturn]] void endOutOfMemory();

/// Characters in a line of standard output where that is a terminal; else 0.
[[nodiscard]] std::size_t outputWidth();

/// The arguments behind the program's name: UTF-8 where the system has them as characters, else the bytes they are.
[[nodiscard]] std::vector<std::string> programArguments(int argc, char** argv);

/// First thing in main(): gives the standard streams that the caller closed to the null device, so that no file opened
/// later takes their place, and lets a reader that has gone, or a file-size limit, be a failed write instead of the end
/// of the program. A console that takes characters is told that it gets UTF-8.
void prepareStandardStreams();

}  // namespace quorvel
