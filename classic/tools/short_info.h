// The short-info table: one fixed-width line per session, with the columns the user chose.
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "classic/find/user_act.h"
#include "log/clock.h"
#include "log/file_system.h"

namespace quorvel {

/// One column that the table can have.
struct ShortInfoColumn {
  std::string_view key;  ///< its flag in section kShortInfoSection of the settings
  std::string_view header;
  std::size_t width;  ///< characters; longer values are cut, shorter ones padded with blanks
};

inline constexpr std::string_view kShortInfoSection = "OPTION-SAVE-SHORT-INFO";

/// All columns, in the order of the table.
inline constexpr std::array<ShortInfoColumn, 8> kShortInfoColumns{{
    {"SaveName", "Name", 34},
    {"SaveIP", "IP", 18},
    {"SaveLogonTime", "Logon", 40},
    {"SaveLogoffTime", "Logoff", 22},
    {"SaveNumberInLog", "No", 9},
    {"SavePosition", "Pos", 13},
    {"SaveLogonNo", "LogonNo", 10},
    {"SaveTreeIndex", "TreeIndex", 10},
}};

/// Which of kShortInfoColumns a table has, by index.
using ShortInfoChoice = std::bitset<kShortInfoColumns.size()>;

/// One table being written. Lines are collected and written in batches of whole lines: after flush() the file is
/// complete up to the last session handed over. A failed write is kept and returned by the next flush().
class ShortInfoTable {
 public:
  /// Creates the file, or empties it. files must outlive the table.
  [[nodiscard]] static Result<ShortInfoTable> create(FileSystem& files, const std::filesystem::path& path,
                                                     ShortInfoChoice columns);

  void WriteShortInfoHeader(const std::filesystem::path& log, const DateTime& now);
  void WriteShortInfoLine(const UserAct& record);
  Status flush();

 private:
  ShortInfoTable(std::unique_ptr<File> file, std::filesystem::path path, ShortInfoChoice columns);
  void flushWhenLarge();

  std::unique_ptr<File> m_file;
  std::filesystem::path m_path;
  ShortInfoChoice m_columns;
  std::string m_batch;  ///< whole lines
  Status m_failure;     ///< the first one; nothing is written after it
};

}  // namespace quorvel
