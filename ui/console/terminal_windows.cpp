#define NOMINMAX
#include <windows.h>
// windows.h goes first
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#include <stdio.h>
#include <stdlib.h>

#include <filesystem>
#include <memory>

#include "log/text.h"
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

/// argv holds the arguments in the code page of the system, which lacks most characters that file names can hold.
std::vector<std::string> programArguments(int /*argc*/, char** /*argv*/) {
  int count = 0;
  const std::unique_ptr<wchar_t*, decltype(&::LocalFree)> words(::CommandLineToArgvW(::GetCommandLineW(), &count),
                                                                ::LocalFree);
  std::vector<std::string> arguments;
  for (int i = 1; words && i < count; ++i)
    arguments.push_back(pathBytes(words.get()[i]));
  return arguments;
}

/// Files are opened by handle here: they cannot take a standard stream's place. Logs and reports are bytes.
void prepareStandardStreams() {
  (void)::_setmode(::_fileno(stdin), _O_BINARY);
  (void)::_setmode(::_fileno(stdout), _O_BINARY);
  ::SetConsoleOutputCP(CP_UTF8);
}

}  // namespace quorvel
