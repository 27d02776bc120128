#include "report/raw_tables.h"

#include <array>
#include <numeric>

#include "report/action_fields.h"
#include "report/field_table.h"

namespace quorvel {
namespace {

constexpr bool kExtra = true;

Cell serverName(const CellMaker&, const SessionRow& session) {
  const auto all = grammars();
  return session.server < all.size() ? CellMaker::name(all[session.server]->name()) : Cell{};
}

constexpr auto kSessionFields = std::to_array<Field<SessionRow>>({
    {{"session", "Session", CellKind::Count, kExtra},
     [](const CellMaker& make, const SessionRow&) { return CellMaker::count(make.row() + std::uint64_t{1}); }},
    logField<SessionRow>(),
    textField<SessionRow, &SessionRow::key>("key", "Key", kExtra),
    {{"inferred", "Put together", CellKind::Flag, kExtra},
     [](const CellMaker&, const SessionRow& row) { return CellMaker::flag(row.isInferred); }},
    {{"server", "Server", CellKind::Name, kExtra}, serverName},
    textField<SessionRow, &SessionRow::user>("user", "User"),
    textField<SessionRow, &SessionRow::address>("address", "Address"),
    timeField<SessionRow, &SessionRow::connected>("connected", "Connected"),
    timeField<SessionRow, &SessionRow::loggedOn>("logged_on", "Logged on", kExtra),
    timeField<SessionRow, &SessionRow::ended>("ended", "Ended"),
    {{"seconds", "Duration", CellKind::Seconds},
     [](const CellMaker&, const SessionRow& row) { return CellMaker::seconds(row.seconds()); }},
    {{"outcome", "Outcome", CellKind::Name},
     [](const CellMaker&, const SessionRow& row) { return CellMaker::name(logonResultName(row.outcome)); }},
    {{"end", "End", CellKind::Name},
     [](const CellMaker&, const SessionRow& row) { return CellMaker::name(sessionEndName(row.end)); }},
    countField<SessionRow, &SessionRow::downloads>("downloads", "Downloads"),
    bytesField<SessionRow, &SessionRow::downloadBytes>("download_bytes", "Downloaded"),
    countField<SessionRow, &SessionRow::uploads>("uploads", "Uploads"),
    bytesField<SessionRow, &SessionRow::uploadBytes>("upload_bytes", "Uploaded"),
    countField<SessionRow, &SessionRow::failedTransfers>("failed_transfers", "Failed transfers"),
    countField<SessionRow, &SessionRow::deletes>("deletes", "Deletes"),
    countField<SessionRow, &SessionRow::renames>("renames", "Renames", kExtra),
    countField<SessionRow, &SessionRow::failedLogons>("failed_logons", "Refused"),
    countField<SessionRow, &SessionRow::lines>("lines", "Lines", kExtra),
    countField<SessionRow, &SessionRow::position>("position", "Position", kExtra),
    countField<SessionRow, &SessionRow::lastPosition>("last_position", "Last position", kExtra),
});

constexpr auto kLogonFields = std::to_array<Field<LogonRow>>({
    {{"session", "Session", CellKind::Count, kExtra},
     [](const CellMaker&, const LogonRow& row) { return CellMaker::count(row.session + std::uint64_t{1}); }},
    logField<LogonRow>(),
    timeField<LogonRow, &LogonRow::time>("time", "Time"),
    textField<LogonRow, &LogonRow::user>("user", "User"),
    textField<LogonRow, &LogonRow::address>("address", "Address"),
    {{"outcome", "Outcome", CellKind::Name},
     [](const CellMaker&, const LogonRow& row) { return outcomeCell(row.isOk() ? Outcome::Ok : Outcome::Failed); }},
    {{"reason", "Reason", CellKind::Name},
     [](const CellMaker&, const LogonRow& row) { return CellMaker::name(logonResultName(row.result)); }},
    {{"reply", "Reply", CellKind::Name, kExtra},
     [](const CellMaker& make, const LogonRow& row) { return make.keptName(replyName(row.reply)); }},
    countField<LogonRow, &LogonRow::position>("position", "Position", kExtra),
});

constexpr auto kActionFields = actionFields<ActionRow>();

/// One shape, or the ledger, of one log.
struct ShapeRow {
  LogNumber log = 0;
  std::uint16_t shape = 0;
};

const SetAsideShape& shapeOf(const CellMaker& make, const ShapeRow& row) {
  return make.activity().logs[row.log].ledger.shapes[row.shape];
}

Cell logText(const CellMaker& make, LogNumber log, std::string_view text) {
  return make.keptText(utf8Of(text, make.activity().logs[log].encoding));
}

constexpr auto kSetAsideFields = std::to_array<Field<ShapeRow>>({
    logField<ShapeRow>(),
    {{"shape", "Shape", CellKind::Text},
     [](const CellMaker& make, const ShapeRow& row) { return logText(make, row.log, shapeOf(make, row).shape); }},
    {{"lines", "Lines", CellKind::Count},
     [](const CellMaker& make, const ShapeRow& row) { return CellMaker::count(shapeOf(make, row).lines); }},
    {{"bytes", "Bytes", CellKind::Bytes, kExtra},
     [](const CellMaker& make, const ShapeRow& row) {
       return CellMaker::bytes(static_cast<std::int64_t>(shapeOf(make, row).bytes));
     }},
    {{"position", "Position", CellKind::Count, kExtra},
     [](const CellMaker& make, const ShapeRow& row) { return CellMaker::count(shapeOf(make, row).position); }},
    {{"example", "Example", CellKind::Text},
     [](const CellMaker& make, const ShapeRow& row) { return logText(make, row.log, shapeOf(make, row).example); }},
});

/// A share of the ledger: its lines, its bytes.
template <auto Share>
constexpr Field<LogInfo> linesField(std::string_view name, std::string_view title, bool isExtra = true) {
  return {{name, title, CellKind::Count, isExtra},
          [](const CellMaker&, const LogInfo& log) { return CellMaker::count((log.ledger.*Share).lines); }};
}
template <auto Share>
constexpr Field<LogInfo> bytesOfField(std::string_view name, std::string_view title) {
  return {{name, title, CellKind::Bytes, kExtra}, [](const CellMaker&, const LogInfo& log) {
            return CellMaker::bytes(static_cast<std::int64_t>((log.ledger.*Share).bytes));
          }};
}

constexpr auto kCheckFields = std::to_array<Field<LogInfo>>({
    {{"schema", "Schema", CellKind::Count, kExtra},
     [](const CellMaker&, const LogInfo&) { return CellMaker::count(kTableSchema); }},
    {{"log", "Log", CellKind::Text},
     [](const CellMaker& make, const LogInfo&) { return make.logName(static_cast<LogNumber>(make.row())); }},
    {{"server", "Server", CellKind::Name},
     [](const CellMaker&, const LogInfo& log) {
       return log.grammar == nullptr ? Cell{} : CellMaker::name(log.grammar->name());
     }},
    {{"text", "Text", CellKind::Name, kExtra},
     [](const CellMaker&, const LogInfo& log) {
       return CellMaker::name(log.encoding == TextEncoding::Utf8 ? "utf-8" : "windows-1252");
     }},
    {{"bytes", "Bytes", CellKind::Bytes},
     [](const CellMaker&, const LogInfo& log) {
       return CellMaker::bytes(static_cast<std::int64_t>(log.ledger.bytes()));
     }},
    {{"lines", "Lines", CellKind::Count},
     [](const CellMaker&, const LogInfo& log) { return CellMaker::count(log.ledger.lines()); }},
    linesField<&Ledger::understood>("understood_lines", "Understood", false),
    bytesOfField<&Ledger::understood>("understood_bytes", "Understood bytes"),
    linesField<&Ledger::setAside>("set_aside_lines", "Set aside", false),
    bytesOfField<&Ledger::setAside>("set_aside_bytes", "Set aside bytes"),
    linesField<&Ledger::foreign>("foreign_lines", "Foreign", false),
    bytesOfField<&Ledger::foreign>("foreign_bytes", "Foreign bytes"),
    linesField<&Ledger::repeated>("repeated_lines", "Repeated", false),
    bytesOfField<&Ledger::repeated>("repeated_bytes", "Repeated bytes"),
    {{"sessions", "Sessions", CellKind::Count},
     [](const CellMaker&, const LogInfo& log) { return CellMaker::count(log.sessions); }},
    {{"first", "First", CellKind::Time},
     [](const CellMaker&, const LogInfo& log) { return CellMaker::time(log.ledger.first); }},
    {{"last", "Last", CellKind::Time},
     [](const CellMaker&, const LogInfo& log) { return CellMaker::time(log.ledger.last); }},
    {{"clock_jumps", "Clock jumps", CellKind::Count, kExtra},
     [](const CellMaker&, const LogInfo& log) { return CellMaker::count(log.ledger.clockJumps); }},
});

}  // namespace

std::unique_ptr<Table> sessionsTable(const Activity& activity, std::vector<RowNumber> rows) {
  const auto source = [](const SessionRow&, RowNumber row) { return RowSource{RowSource::Kind::Session, row}; };
  return std::make_unique<FieldTable<SessionRow>>("sessions", activity, kSessionFields, source, activity.sessions,
                                                  std::move(rows));
}

std::unique_ptr<Table> logonsTable(const Activity& activity, std::vector<RowNumber> rows) {
  const auto source = [](const LogonRow&, RowNumber row) { return RowSource{RowSource::Kind::Logon, row}; };
  return std::make_unique<FieldTable<LogonRow>>("logons", activity, kLogonFields, source, activity.logons,
                                                std::move(rows));
}

std::unique_ptr<Table> actionsTable(const Activity& activity, std::vector<RowNumber> rows) {
  const auto source = [](const ActionRow&, RowNumber row) { return RowSource{RowSource::Kind::Action, row}; };
  return std::make_unique<FieldTable<ActionRow>>("actions", activity, kActionFields, source, activity.actions,
                                                 std::move(rows));
}

std::unique_ptr<Table> setAsideTable(const Activity& activity) {
  std::vector<ShapeRow> rows;
  for (std::size_t log = 0; log < activity.logs.size(); ++log) {
    const std::size_t shapes = activity.logs[log].ledger.shapes.size();
    for (std::size_t shape = 0; shape < shapes; ++shape)
      rows.push_back({static_cast<LogNumber>(log), static_cast<std::uint16_t>(shape)});
  }
  return std::make_unique<FieldTable<ShapeRow>>("set_aside", activity, kSetAsideFields, nullptr, std::move(rows));
}

std::unique_ptr<Table> checkTable(const Activity& activity) {
  return std::make_unique<FieldTable<LogInfo>>("check", activity, kCheckFields, nullptr, activity.logs);
}

std::vector<RowNumber> allRows(std::size_t count) {
  std::vector<RowNumber> rows(count);
  std::iota(rows.begin(), rows.end(), RowNumber{0});
  return rows;
}

}  // namespace quorvel
