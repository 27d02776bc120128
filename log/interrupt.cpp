#include "log/interrupt.h"

#include <atomic>
#include <csignal>

namespace quorvel {
namespace {

std::atomic<bool> interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may not lock");

extern "C" void onInterrupt(int signal) {
  interrupted = true;
  std::signal(signal, SIG_DFL);
}

void catchSignal(int signal) {
  if (std::signal(signal, onInterrupt) == SIG_IGN) std::signal(signal, SIG_IGN);  // e.g. started with nohup
}

}  // namespace

void catchInterrupts() {
  catchSignal(SIGINT);
  catchSignal(SIGTERM);
#ifdef SIGHUP
  catchSignal(SIGHUP);
#endif
}

bool isInterrupted() {
  return interrupted;
}

}  // namespace quorvel
