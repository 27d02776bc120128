// What only the operating system knows about folders; one source per system.
#pragma once

#include <filesystem>

namespace quorvel {

/// Full name of the running executable; empty when the system does not tell.
[[nodiscard]] std::filesystem::path executablePath();

/// Whether files can be made in the folder by this user.
[[nodiscard]] bool isWritableFolder(const std::filesystem::path& folder);

/// Value of an environment variable that names a folder; empty when it is not set.
[[nodiscard]] std::filesystem::path folderFromEnvironment(const char* variable);

/// The folder for this user's data of all programs; empty when the user has none.
[[nodiscard]] std::filesystem::path userDataFolder();

}  // namespace quorvel
