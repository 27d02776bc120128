#include <io.h>
#include <stdio.h>
#include <stdlib.h>
#include <windows.h>

#include "ui/console/terminal.h"

namespace quorvel {

bool isErrorOutputTerminal() {
  return ::_isatty(::_fileno(stderr)) != 0;
}

void endOutOfMemory() {
  ::_write(::_fileno(stderr), "quorvel: Out of memory.\n", 24);
  ::_exit(1);
}

std::size_t outputWidth() {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (::GetConsoleScreenBufferInfo(::GetStdHandle(STD_OUTPUT_HANDLE), &info) == 0) return 0;
  return static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left + 1);
}

void prepareStandardStreams() {}  // files are opened by handle here: they cannot take a standard stream's place

}  // namespace quorvel
