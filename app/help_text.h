// The command line reference that the help menu shows.
#pragma once

#include <filesystem>
#include <span>
#include <string>

#include "log/file_system.h"

namespace quorvel {

/// The text of CLA_ref.txt from the first of the folders that has one, so that a translated or annotated file is
/// shown as it is; the program's own text when none has.
[[nodiscard]] std::string commandLineReferenceText(FileSystem& files, std::span<const std::filesystem::path> folders);

}  // namespace quorvel
