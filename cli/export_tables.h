// quorvel export: the tables in other programs' formats.
#pragma once

#include "cli/log_reading.h"
#include "cli/request.h"

namespace quorvel {

/// Writes what the request asks for: a folder of files (made where it is missing), a database, a file of events.
Status exportTables(const Request& request, FileSystem& files, const LogReading& reading, const Scope& scope);

}  // namespace quorvel
