// The process's standard streams; one source per system.
#pragma once

#include <cstddef>

namespace quorvel {

/// Whether standard error is a terminal.
[[nodiscard]] bool isErrorOutputTerminal();

/// Ends the program with one line on standard error and status 1, whatever thread asks for it: where there is no memory
/// left nothing can be relied on to go on. What was written stays as it is.
[[noreturn]] void endOutOfMemory();

/// Characters in a line of standard output where that is a terminal; else 0.
[[nodiscard]] std::size_t outputWidth();

/// First thing in main(): gives the standard streams that the caller closed to the null device, so that no file opened
/// later takes their place, and lets a reader that has gone, or a file-size limit, be a failed write instead of the end
/// of the program.
void prepareStandardStreams();

}  // namespace quorvel
