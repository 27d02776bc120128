#include "app/program_folder.h"

#include <system_error>

#include "app/program_folder_system.h"

namespace quorvel {
namespace {

std::filesystem::path chooseFolder() {
  if (const auto chosen = folderFromEnvironment("QUORVEL_HOME"); !chosen.empty()) return chosen;
  const auto besideExecutable = executableFolder();
  if (isWritableFolder(besideExecutable)) return besideExecutable;
  const auto ofUser = userDataFolder();
  return ofUser.empty() ? besideExecutable : ofUser / "quorvel";
}

bool isSeparator(char c) {
  return c == '/' || c == static_cast<char>(std::filesystem::path::preferred_separator);
}

}  // namespace

std::filesystem::path findProgramFolder() {
  std::error_code error;
  auto folder = chooseFolder();
  if (auto full = std::filesystem::absolute(folder, error); !error) folder = std::move(full);
  std::filesystem::create_directories(folder, error);
  return folder;
}

std::filesystem::path executableFolder() {
  std::error_code ignored;
  const auto executable = executablePath();
  return executable.empty() ? std::filesystem::current_path(ignored) : executable.parent_path();
}

bool isAbsoluteName(std::string_view name) {
  return name.find(':') != std::string_view::npos || (!name.empty() && isSeparator(name.front()));
}

}  // namespace quorvel
