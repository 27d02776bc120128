// The tables as an SQLite database, with indexes and a view for each question.
#pragma once

#include <filesystem>
#include <string>

#include "log/file_system.h"
#include "report/scope.h"

namespace quorvel {

/// Puts a database with the rows of a selection in the place of path; on failure the old file is there as it was. Its
/// user_version is the number of the tables' layout. Fails with a sentence where this build has no SQLite.
Status writeSqlite(FileSystem& files, const std::filesystem::path& path, const Activity& activity,
                   const Selection& selection);

/// "SQLite 3.40.1"; empty where this build has none.
[[nodiscard]] std::string sqliteVersion();

}  // namespace quorvel
