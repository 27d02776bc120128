#include <io.h>
#include <stdio.h>
#include <stdlib.h>

#include "ui/console/terminal.h"

namespace quorvel {

bool isErrorOutputTerminal() {
  return ::_isatty(::_fileno(stderr)) != 0;
}

void endOutOfMemory() {
  ::_write(::_fileno(stderr), "quorvel: Out of memory.\n", 24);
  ::_exit(1);
}

void prepareStandardStreams() {}  // files are opened by handle here: they cannot take a standard stream's place

}  // namespace quorvel
