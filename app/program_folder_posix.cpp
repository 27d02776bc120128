#include <unistd.h>

#include <cstdlib>
#include <system_error>

#ifdef __APPLE__
#include <mach-o/dyld.h>

#include <cstdint>
#include <string>
#endif

#include "app/program_folder_system.h"

namespace quorvel {

std::filesystem::path executablePath() {
  std::error_code error;
#ifdef __APPLE__
  std::uint32_t length = 0;
  _NSGetExecutablePath(nullptr, &length);
  std::string name(length, '\0');
  if (_NSGetExecutablePath(name.data(), &length) != 0) return {};
  return std::filesystem::canonical(name.c_str(), error);
#else
  return std::filesystem::read_symlink("/proc/self/exe", error);
#endif
}

bool isWritableFolder(const std::filesystem::path& folder) {
  return ::access(folder.c_str(), W_OK | X_OK) == 0;
}

std::filesystem::path folderFromEnvironment(const char* variable) {
  const char* const value = std::getenv(variable);
  return value == nullptr ? std::filesystem::path() : std::filesystem::path(value);
}

std::filesystem::path userDataFolder() {
  auto folder = folderFromEnvironment("XDG_DATA_HOME");
  if (folder.is_absolute()) return folder;  // a relative one is to be ignored, by the convention it comes from
  folder = folderFromEnvironment("HOME");
  return folder.is_absolute() ? folder / ".local" / "share" : std::filesystem::path();
}

}  // namespace quorvel
