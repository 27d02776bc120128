// What a report answers with: rows and named columns, whoever shows or writes them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "activity/activity.h"

namespace quorvel {

enum class CellKind : std::uint8_t {
  Null,
  Text,     ///< UTF-8
  Name,     ///< a text of ours: closed, ok, download; number, up to 100: its place among others
  Count,    ///< integer
  Bytes,    ///< integer
  Seconds,  ///< integer
  Percent,  ///< integer, hundredths of a percent
  Time,     ///< LogTime in number
  Flag,     ///< 0 or 1 in number
};

/// One value. text holds until the next call on its table.
struct Cell {
  CellKind kind = CellKind::Null;
  std::int64_t number = 0;
  std::string_view text;
};

struct Column {
  std::string_view name;   ///< in files: download_bytes
  std::string_view title;  ///< for people: Downloaded
  CellKind kind;           ///< of all its cells that are not null
  bool isExtra = false;    ///< people see it only when they ask for it; files always hold it
};

/// Where a row comes from, to show its lines or go to its session.
struct RowSource {
  enum class Kind : std::uint8_t {
    None,
    Session,
    Logon,
    Action
  };
  Kind kind = Kind::None;
  RowNumber row = 0;
};

/// Rows of an answer. Not for several threads at once. Holds a share of the activity it was made from.
class Table {
 public:
  virtual ~Table() = default;
  /// In files and the shell: "sessions", "logins".
  [[nodiscard]] virtual std::string_view name() const = 0;
  [[nodiscard]] virtual std::span<const Column> columns() const = 0;
  [[nodiscard]] virtual std::size_t rowCount() const = 0;
  /// How many rows at the end hold sums of those above; they are for people, and stay last.
  [[nodiscard]] virtual std::size_t totalRows() const { return 0; }
  [[nodiscard]] virtual Cell cell(std::size_t row, std::size_t column) const = 0;
  [[nodiscard]] virtual RowSource source(std::size_t row) const { return (void)row, RowSource(); }
};

/// The rows in the order of a column, null first, equal ones and sums as they stand. Text sorts by bytes, without case.
[[nodiscard]] std::vector<RowNumber> sortedRows(const Table& table, std::size_t column, bool isDescending);

/// What can be done to any table: rows picked and put in order, columns chosen, in this order.
struct TableView {
  std::vector<RowNumber> rows;
  std::vector<std::size_t> columns;
};

}  // namespace quorvel
