#include "cli/export_tables.h"

#include <filesystem>
#include <system_error>

#include "cli/standard_output.h"
#include "cli/time_zone.h"
#include "log/text.h"
#include "report/csv_writer.h"
#include "report/ecs_writer.h"
#include "report/json_writer.h"
#include "report/raw_tables.h"
#include "report/sqlite_writer.h"

namespace quorvel {
namespace {

class TableExport {
 public:
  TableExport(const Request& request, FileSystem& files)
      : m_request(request), m_files(files), m_folder(pathFromBytes(request.output)) {}

  Status write(const Activity& activity, const Selection& selection) {
    std::error_code error;
    std::filesystem::create_directories(m_folder, error);
    for (const auto& table :
         {sessionsTable(activity, selection.sessions), logonsTable(activity, selection.logons),
          actionsTable(activity, selection.actions), setAsideTable(activity), checkTable(activity)}) {
      if (Status written = write(*table); !written.isOk()) return written;
    }
    return {};
  }

 private:
  Status write(const Table& table) {
    const bool isCsv = m_request.format == Format::Csv;
    auto output = openOutput(m_files, m_folder / (std::string(table.name()) + (isCsv ? ".csv" : ".jsonl")));
    if (!output.isOk()) return output.error();
    const Status written =
        isCsv ? writeCsv(table, {m_request.isRaw}, *output.value()) : writeJsonLines(table, *output.value());
    return written.isOk() ? output.value()->finish() : written;
  }

  const Request& m_request;
  FileSystem& m_files;
  std::filesystem::path m_folder;
};

Status writeEvents(const Request& request, FileSystem& files, const LogReading& reading, const Selection& selection) {
  const auto zone = TimeZone::named(request.timeZone);
  if (!zone) return Error{ErrorCode::PathNotFound, {}, "No such time zone is known"};
  auto output = request.output.empty() ? standardOutput() : openOutput(files, pathFromBytes(request.output));
  if (!output.isOk()) return output.error();
  std::vector<std::string> names;
  for (const LogInfo& log : reading.activity.logs)
    names.push_back(log.name);
  LogLines lines(files, reading.arguments, names);
  const EcsOptions options{[&zone](LogTime time) { return zone->toUtc(time); },
                           [&lines](LogNumber log, std::uint64_t position) { return lines.at(log, position); },
                           reading.arguments};
  const Status written = writeEcs(reading.activity, selection, options, *output.value());
  return written.isOk() ? output.value()->finish() : written;
}

}  // namespace

Status exportTables(const Request& request, FileSystem& files, const LogReading& reading, const Scope& scope) {
  const Selection selection = select(reading.activity, scope);
  switch (request.format) {
    case Format::Sqlite:
      return writeSqlite(files, pathFromBytes(request.output), reading.activity, selection);
    case Format::Ecs:
      return writeEvents(request, files, reading, selection);
    default:
      return TableExport(request, files).write(reading.activity, selection);
  }
}

}  // namespace quorvel
