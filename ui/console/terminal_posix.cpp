#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <string_view>

#include "ui/console/terminal.h"

namespace quorvel {

bool isErrorOutputTerminal() {
  return ::isatty(STDERR_FILENO) == 1;
}

void endOutOfMemory() {
  constexpr std::string_view kMessage = "quorvel: Out of memory.\n";
  (void)!::write(STDERR_FILENO, kMessage.data(), kMessage.size());
  ::_exit(1);
}

std::size_t outputWidth() {
  constexpr std::size_t kUsual = 80;
  if (::isatty(STDOUT_FILENO) != 1) return 0;
  winsize size{};
  return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
}

std::vector<std::string> programArguments(int argc, char** argv) {
  return {argv + std::min(argc, 1), argv + argc};
}

void prepareStandardStreams() {
  int descriptor = 0;
  do {
    descriptor = ::open("/dev/null", O_RDWR);  // takes the lowest number that is free
  } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
  if (descriptor > STDERR_FILENO) ::close(descriptor);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace quorvel
