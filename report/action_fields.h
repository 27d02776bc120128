// The columns of file actions, for every table that shows some.
#pragma once

#include <array>

#include "report/field_table.h"

namespace quorvel {

/// "ok", "failed"; null where it is not known.
[[nodiscard]] inline Cell outcomeCell(Outcome outcome) {
  if (outcome == Outcome::Unknown) return {};
  return CellMaker::name(outcome == Outcome::Ok ? "ok" : "failed");
}

/// Row is ActionRow or derived from it.
template <typename Row>
constexpr auto actionFields() {
  constexpr bool kExtra = true;
  return std::to_array<Field<Row>>({
      {{"session", "Session", CellKind::Count, kExtra},
       [](const CellMaker&, const Row& row) { return CellMaker::count(row.session + std::uint64_t{1}); }},
      logField<Row>(),
      timeField<Row, &Row::time>("time", "Time"),
      textField<Row, &Row::user>("user", "User"),
      textField<Row, &Row::address>("address", "Address"),
      {{"action", "Action", CellKind::Name},
       [](const CellMaker&, const Row& row) { return CellMaker::name(actionName(row.action)); }},
      textField<Row, &Row::path>("path", "Path"),
      textField<Row, &Row::toPath>("to_path", "To", kExtra),
      textField<Row, &Row::folder>("folder", "Folder", kExtra),
      bytesField<Row, &Row::bytes>("bytes", "Size"),
      {{"seconds", "Duration", CellKind::Seconds, kExtra},
       [](const CellMaker&, const Row& row) { return CellMaker::seconds(row.seconds); }},
      {{"outcome", "Outcome", CellKind::Name},
       [](const CellMaker&, const Row& row) { return outcomeCell(row.outcome); }},
      {{"cause", "Cause", CellKind::Name},
       [](const CellMaker&, const Row& row) { return CellMaker::name(failureCauseName(row.cause)); }},
      {{"reply", "Reply", CellKind::Name, kExtra},
       [](const CellMaker& make, const Row& row) { return make.keptName(replyName(row.reply)); }},
      countField<Row, &Row::position>("position", "Position", kExtra),
  });
}

}  // namespace quorvel
