// Where the program keeps its settings and working files.
#pragma once

#include <filesystem>

namespace quorvel {

/// The folder for every working file: $QUORVEL_HOME when set, else the folder of the executable when it can be
/// written, else a folder per user ($XDG_DATA_HOME/quorvel, %LOCALAPPDATA%\quorvel), which is made when missing.
[[nodiscard]] std::filesystem::path findProgramFolder();

/// The folder that holds the running executable.
[[nodiscard]] std::filesystem::path executableFolder();

/// Whether a file name counts as absolute: it contains ":" or starts with a separator.
[[nodiscard]] bool isAbsoluteName(std::string_view name);

}  // namespace quorvel
