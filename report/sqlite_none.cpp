#include "report/sqlite_writer.h"

namespace quorvel {

Status writeSqlite(FileSystem&, const std::filesystem::path& path, const Activity&, const Selection&) {
  return Error{ErrorCode::PathFileAccess, path, "This build writes no SQLite files"};
}

std::string sqliteVersion() {
  return {};
}

}  // namespace quorvel
