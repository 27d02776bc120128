#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

#include "app/working_folder.h"

namespace quorvel {
namespace {

class PosixFolderLock final : public FolderLock {
 public:
  explicit PosixFolderLock(int descriptor) : m_descriptor(descriptor) {}
  PosixFolderLock(const PosixFolderLock&) = delete;
  PosixFolderLock& operator=(const PosixFolderLock&) = delete;
  ~PosixFolderLock() override { ::close(m_descriptor); }

 private:
  int m_descriptor;
};

}  // namespace

/// The folder itself is locked: there is no lock file that somebody could delete or that would be left.
FolderLock::Outcome FolderLock::take(const std::filesystem::path& folder, std::unique_ptr<FolderLock>& lock) {
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return Outcome::Impossible;
  auto taken = std::make_unique<PosixFolderLock>(descriptor);
  if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    return errno == EWOULDBLOCK ? Outcome::InUse : Outcome::Impossible;
  }
  lock = std::move(taken);
  return Outcome::Taken;
}

}  // namespace quorvel
