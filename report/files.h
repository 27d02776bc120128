// What happened to files.
#pragma once

#include <memory>
#include <vector>

#include "report/scope.h"
#include "report/table.h"

namespace quorvel {

/// Numbers of the actions a scope chooses, in table order. Where it asks for a path, they are those of the files, not
/// of the names: what happened to a file before it was given a name that the scope asks for, and after it lost one.
[[nodiscard]] std::vector<RowNumber> fileActions(const Activity& activity, const Scope& scope);

/// Actions summed by the folder that their path lies in, most actions first. Columns: folder, actions, downloads,
/// download_bytes, uploads, upload_bytes, failed, deletes, renames, last.
[[nodiscard]] std::unique_ptr<Table> foldersTable(const Activity& activity, const std::vector<RowNumber>& actions);

}  // namespace quorvel
