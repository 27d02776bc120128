#include "app/error_log.h"

#include <string>

#include "app/program.h"
#include "core/clock.h"
#include "core/text.h"

namespace quorvel {
namespace {

constexpr std::string_view kFileName = "error.log";
constexpr int kNominalRecordLength = 36;  // six texts counted as 4 bytes each, three 32-bit integers
constexpr std::size_t kLongestValue = 4096;
constexpr std::size_t kEmptyLinesBehindBlock = 4;

/// Collects the lines of one block.
class Block {
 public:
  void line(std::string_view text, std::string_view value = {}) { m_text.append(text).append(value).append(kLineEnd); }
  void field(std::string_view label, std::string_view value) {
    constexpr std::size_t kValueColumn = 20;
    line(atColumn(label, kValueColumn, value.substr(0, kLongestValue)));
  }
  void head(const Error& error) {
    const DateTime now = localNow();
    line("Quorvel version: ", kVersion);
    line("Date and time: ", now.date + " " + now.time);
    line("VB Error No. ", std::to_string(error.number()));
    line("VB Error Description: ", error.description());
  }
  /// The order is not that of the record; tools that read the log rely on it.
  void dump(const UserAct& record) {
    line("DATA USERACT-------------------------");
    field("Connect time:", record.ConnectTime);
    field("IP:", record.IP);
    field("Position:", std::to_string(record.Position));
    field("Logon time:", record.LogonTime);
    field("Logoff time:", record.LogoffTime);
    field("Name:", record.Name);
    field("Number in log:", record.NumberInLog);
    field("Logon position:", std::to_string(record.LogonNo));
    field("TreeIndex:", std::to_string(record.TreeIndex));
    line("Len(userAct) = ", std::to_string(kNominalRecordLength));
  }
  [[nodiscard]] std::string finish() {
    for (std::size_t i = 0; i < kEmptyLinesBehindBlock; ++i)
      line({});
    return std::move(m_text);
  }

 private:
  std::string m_text;
};

}  // namespace

ErrorLog::ErrorLog(FileSystem& files, const std::filesystem::path& programFolder)
    : m_files(files), m_path(programFolder / kFileName) {}

void ErrorLog::recordNotSaved(const std::filesystem::path& log, const std::filesystem::path& usersFile,
                              const UserAct& record, std::int32_t recordNumber, const Error& error) {
  Block block;
  block.line(log.string() + " - error when saving post No " + std::to_string(recordNumber) + " into file ",
             usersFile.string());
  block.head(error);
  block.dump(record);
  append(block.finish());
}

void ErrorLog::errorInScan(const std::filesystem::path& log, const Error& error) {
  Block block;
  block.head(error);
  block.line(log.string());
  append(block.finish());
}

void ErrorLog::append(std::string_view block) {
  if (!m_file) {
    auto file = m_files.open(m_path, OpenMode::Append);
    if (!file.isOk()) return;
    m_file = std::move(file.value());
  }
  (void)m_file->appendLines(block);
}

}  // namespace quorvel
