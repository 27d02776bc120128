#define NOMINMAX
#include <windows.h>

#include <string>

#include "app/program_folder_system.h"

namespace quorvel {

std::filesystem::path executablePath() {
  constexpr DWORD kLongestPath = 32768;
  std::wstring name(kLongestPath, L'\0');
  name.resize(::GetModuleFileNameW(nullptr, name.data(), kLongestPath));
  return name;
}

bool isWritableFolder(const std::filesystem::path& folder) {
  const auto probe = folder / (L"quorvel-" + std::to_wstring(::GetCurrentProcessId()) + L".tmp");
  const HANDLE file = ::CreateFileW(probe.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  ::CloseHandle(file);
  return true;
}

std::filesystem::path folderFromEnvironment(const char* variable) {
  const std::wstring name(variable, variable + std::char_traits<char>::length(variable));
  const wchar_t* const value = ::_wgetenv(name.c_str());
  return value == nullptr ? std::filesystem::path() : std::filesystem::path(value);
}

std::filesystem::path userDataFolder() {
  return folderFromEnvironment("LOCALAPPDATA");
}

}  // namespace quorvel
