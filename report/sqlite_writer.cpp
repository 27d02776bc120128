#include "report/sqlite_writer.h"

#include <sqlite3.h>

#include "log/text.h"
#include "report/cell_text.h"
#include "report/output.h"
#include "report/raw_tables.h"

namespace quorvel {
namespace {

constexpr std::string_view kIndexes = R"(
CREATE INDEX sessions_user ON sessions(user);
CREATE INDEX sessions_address ON sessions(address);
CREATE INDEX sessions_connected ON sessions(connected);
CREATE INDEX logons_session ON logons(session);
CREATE INDEX logons_user ON logons(user);
CREATE INDEX logons_address ON logons(address);
CREATE INDEX actions_session ON actions(session);
CREATE INDEX actions_user ON actions(user);
CREATE INDEX actions_path ON actions(path);
CREATE INDEX actions_time ON actions(time);
)";

/// One view a question; sessions and check are tables themselves.
constexpr std::string_view kViews = R"(
CREATE VIEW overview AS SELECT
  (SELECT min(first) FROM "check") AS first, (SELECT max(last) FROM "check") AS last,
  (SELECT sum(lines) FROM "check") AS lines, (SELECT count(*) FROM sessions) AS sessions,
  (SELECT count(DISTINCT user) FROM sessions) AS users, (SELECT count(DISTINCT address) FROM sessions) AS addresses,
  (SELECT count(*) FROM logons WHERE outcome = 'ok') AS logons,
  (SELECT count(*) FROM logons WHERE outcome = 'failed') AS failed_logons,
  (SELECT count(*) FROM actions WHERE action = 'download' AND outcome = 'ok') AS downloads,
  (SELECT coalesce(sum(bytes), 0) FROM actions WHERE action = 'download' AND outcome = 'ok') AS download_bytes,
  (SELECT count(*) FROM actions WHERE action = 'upload' AND outcome = 'ok') AS uploads,
  (SELECT coalesce(sum(bytes), 0) FROM actions WHERE action = 'upload' AND outcome = 'ok') AS upload_bytes,
  (SELECT count(*) FROM actions WHERE action IN ('download', 'upload') AND outcome = 'failed') AS failed_transfers;
CREATE VIEW logins_by_address AS SELECT address, sum(outcome = 'failed') AS failures, count(DISTINCT user) AS names,
  count(*) AS attempts, min(time) AS first, max(time) AS last FROM logons GROUP BY address;
CREATE VIEW logins_by_user AS SELECT user, sum(outcome = 'failed') AS failures, count(DISTINCT address) AS addresses,
  count(*) AS attempts, min(time) AS first, max(time) AS last FROM logons GROUP BY user;
CREATE VIEW files AS SELECT path, to_path, folder, time, user, address, action, bytes, outcome, session FROM actions;
CREATE VIEW transfers AS SELECT * FROM actions WHERE action IN ('download', 'upload') AND outcome = 'failed';
CREATE VIEW traffic AS SELECT user, substr(time, 1, 10) AS day, count(*) AS files, coalesce(sum(bytes), 0) AS bytes,
  sum(action = 'download') AS downloads,
  coalesce(sum(CASE WHEN action = 'download' THEN bytes END), 0) AS download_bytes,
  sum(action = 'upload') AS uploads, coalesce(sum(CASE WHEN action = 'upload' THEN bytes END), 0) AS upload_bytes
  FROM actions WHERE action IN ('download', 'upload') AND outcome = 'ok' GROUP BY user, day;
)";

bool isTextKind(CellKind kind) {
  return kind == CellKind::Text || kind == CellKind::Name || kind == CellKind::Time;
}

std::string quoted(std::string_view name) {
  return "\"" + std::string(name) + "\"";
}

class Database {
 public:
  Database() = default;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database() { sqlite3_close(m_database); }

  bool open(const std::filesystem::path& path) {
    const auto name = path.u8string();
    const std::string utf8(name.begin(), name.end());
    return sqlite3_open_v2(utf8.c_str(), &m_database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) == SQLITE_OK;
  }
  bool run(std::string_view sql) {
    return sqlite3_exec(m_database, std::string(sql).c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
  }
  bool write(const Table& table) { return create(table) && insert(table); }

  [[nodiscard]] Error error() const {
    if (sqlite3_errcode(m_database) == SQLITE_FULL) return {ErrorCode::DiskFull, {}};
    if (sqlite3_errcode(m_database) == SQLITE_CANTOPEN) return {ErrorCode::PathNotFound, {}};
    return {ErrorCode::DeviceIoError, {}, sqlite3_errmsg(m_database)};
  }

 private:
  bool create(const Table& table) {
    std::string columns;
    for (const Column& column : table.columns())
      columns.append(columns.empty() ? "" : ", ")
          .append(quoted(column.name))
          .append(isTextKind(column.kind) ? " TEXT" : " INTEGER");
    return run("CREATE TABLE " + quoted(table.name()) + " (" + columns + ")");
  }

  bool insert(const Table& table) {
    std::string places = "?";
    for (std::size_t column = 1; column < table.columns().size(); ++column)
      places += ",?";
    const std::string sql = "INSERT INTO " + quoted(table.name()) + " VALUES (" + places + ")";
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(m_database, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) return false;
    bool isOk = true;
    for (std::size_t row = 0; isOk && row < table.rowCount(); ++row) {
      for (std::size_t column = 0; column < table.columns().size(); ++column)
        bind(statement, static_cast<int>(column) + 1, table.cell(row, column));
      isOk = sqlite3_step(statement) == SQLITE_DONE;
      sqlite3_reset(statement);
    }
    return sqlite3_finalize(statement) == SQLITE_OK && isOk;
  }

  void bind(sqlite3_stmt* statement, int place, const Cell& cell) {
    if (cell.kind == CellKind::Null) {
      sqlite3_bind_null(statement, place);
    } else if (isTextKind(cell.kind)) {
      m_text.clear();
      appendPlain(m_text, cell);
      sqlite3_bind_text(statement, place, m_text.data(), static_cast<int>(m_text.size()), SQLITE_TRANSIENT);
    } else {
      sqlite3_bind_int64(statement, place, cell.number);
    }
  }

  sqlite3* m_database = nullptr;
  std::string m_text;
};

/// A new file needs no journal: where writing it fails, it is removed.
bool writeAll(Database& database, const Activity& activity, const Selection& selection) {
  return database.run("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA cache_size = -65536; BEGIN") &&
         database.write(*sessionsTable(activity, selection.sessions)) &&
         database.write(*logonsTable(activity, selection.logons)) &&
         database.write(*actionsTable(activity, selection.actions)) && database.write(*setAsideTable(activity)) &&
         database.write(*checkTable(activity)) && database.run(kIndexes) && database.run(kViews) &&
         database.run("PRAGMA user_version = " + std::to_string(kTableSchema)) && database.run("COMMIT");
}

}  // namespace

Status writeSqlite(FileSystem& files, const std::filesystem::path& path, const Activity& activity,
                   const Selection& selection) {
  ReplacingFile file(files, path);
  {
    Database database;
    if (!database.open(file.temporary()) || !writeAll(database, activity, selection))
      return file.named(database.error());
  }
  auto written = files.open(file.temporary(), OpenMode::ReadWrite);
  if (!written.isOk()) return file.named(written.error());
  if (Status synced = written.value()->sync(); !synced.isOk()) return file.named(synced.error());
  written.value().reset();
  return file.replace();
}

std::string sqliteVersion() {
  return std::string("SQLite ") + sqlite3_libversion();
}

}  // namespace quorvel
