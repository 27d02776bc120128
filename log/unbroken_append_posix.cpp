#include "log/unbroken_append_posix.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#ifdef __linux__
#include <sched.h>
#include <sys/wait.h>
#endif

namespace quorvel {
namespace {

int writeAll(int descriptor, std::string_view data) {
  while (!data.empty()) {
    const ssize_t count = ::write(descriptor, data.data(), data.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    data.remove_prefix(static_cast<std::size_t>(count));
  }
  return 0;
}

struct Work {
  int descriptor;
  std::string_view data;
  std::string_view end;
  int error = EIO;  ///< stays when the writing process was killed itself

  void run() {
    error = writeAll(descriptor, data);
    if (error == 0) error = writeAll(descriptor, end);
  }
};

#ifdef __linux__
/// False when the system has no process left.
bool runInSecondProcess(Work& work) {
  constexpr std::size_t kStackSize = 64 * 1024;
  alignas(std::max_align_t) std::array<char, kStackSize> stack;
  const auto run = [](void* argument) {
    ::setpgid(0, 0);
    static_cast<Work*>(argument)->run();
    return 0;
  };
  // The caller waits until the second process has ended, which therefore may use the caller's variables.
  const int flags = CLONE_VM | CLONE_VFORK | CLONE_FILES;
  const pid_t process = ::clone(run, stack.data() + stack.size(), flags, &work);
  if (process < 0) return false;
  while (::waitpid(process, nullptr, static_cast<int>(__WCLONE)) < 0 && errno == EINTR) {
  }
  return true;
}
#else
bool runInSecondProcess(Work&) {
  return false;
}
#endif

}  // namespace

int appendUnbroken(int descriptor, std::string_view data, std::string_view end) {
  Work work{descriptor, data, end};
  if (!runInSecondProcess(work)) work.run();
  return work.error;
}

}  // namespace quorvel
