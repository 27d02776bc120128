// Where the program keeps its settings and working files.
#pragma once

#include <filesystem>
#include <string_view>

namespace quorvel {

/// The folder for every working file, as an absolute path: $QUORVEL_HOME when set, else the folder of the executable
/// when it can be written, else a folder per user ($XDG_DATA_HOME/quorvel, %LOCALAPPDATA%\quorvel). It is made when
/// missing; a folder that cannot be made is returned all the same.
[[nodiscard]] std::filesystem::path findProgramFolder();

/// The folder that holds the running executable; the current folder when the system does not tell.
[[nodiscard]] std::filesystem::path executableFolder();

/// Whether a file name counts as absolute: it contains ":" or starts with a separator.
[[nodiscard]] bool isAbsoluteName(std::string_view name);

}  // namespace quorvel
