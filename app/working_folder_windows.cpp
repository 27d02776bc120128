#define NOMINMAX
#include <windows.h>

#include "app/working_folder.h"

namespace quorvel {
namespace {

class WindowsFolderLock final : public FolderLock {
 public:
  explicit WindowsFolderLock(HANDLE handle) : m_handle(handle) {}
  WindowsFolderLock(const WindowsFolderLock&) = delete;
  WindowsFolderLock& operator=(const WindowsFolderLock&) = delete;
  ~WindowsFolderLock() override { ::CloseHandle(m_handle); }

 private:
  HANDLE m_handle;
};

}  // namespace

/// A folder has no lock here, but a file that nobody else may open does, and the system deletes it with its handle.
FolderLock::Outcome FolderLock::take(const std::filesystem::path& folder, std::unique_ptr<FolderLock>& lock) {
  const auto file = folder / "quorvel.lock";
  const HANDLE handle = ::CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                                      FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    const DWORD error = ::GetLastError();
    const bool isInUse = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
    return isInUse ? Outcome::InUse : Outcome::Impossible;
  }
  lock = std::make_unique<WindowsFolderLock>(handle);
  return Outcome::Taken;
}

}  // namespace quorvel
