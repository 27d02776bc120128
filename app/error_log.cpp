#include "app/error_log.h"

#include <string>
#include <utility>

#include "app/program.h"
#include "log/clock.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::string_view kFileName = "error.log";
constexpr int kNominalRecordLength = 36;  // six texts counted as 4 bytes each, three 32-bit integers
constexpr std::size_t kLongestValue = 4096;
constexpr std::size_t kEmptyLinesBehindBlock = 4;

constexpr std::size_t kBatchSize = 1024 * 1024;

}  // namespace

ErrorLog::ErrorLog(FileSystem& files, const std::filesystem::path& programFolder)
    : m_files(files),
      m_path(programFolder / kFileName),
      m_writer([this](const std::string& batch) { return write(batch); }) {}

ErrorLog::~ErrorLog() {
  flush();
}

void ErrorLog::recordNotSaved(const std::filesystem::path& log, const std::filesystem::path& usersFile,
                              const UserAct& record, std::int32_t recordNumber, const Error& error) {
  m_batch.append(pathText(log)).append(" - error when saving post No ");
  m_batch.append(std::to_string(recordNumber)).append(" into file ");
  addLine(pathText(usersFile));
  addHead(error);
  addDump(record);
  endBlock();
}

void ErrorLog::flush() {
  (void)m_writer.finish();
  if (m_batch.empty()) return;
  (void)write(m_batch);
  m_batch.clear();
  m_head.clear();  // its time is over
}

Status ErrorLog::write(std::string_view batch) {
  if (!m_file) {
    auto file = m_files.openToAppendLines(m_path, Owner::Program);
    if (file.isOk()) m_file = std::move(file.value());
  }
  if (m_file) (void)m_file->appendLines(batch);
  return {};
}

void ErrorLog::addHead(const Error& error) {
  if (m_head.empty() || error.code != m_headError) {
    const DateTime now = localNow();
    m_headError = error.code;
    m_head.assign("Quorvel version: ").append(kVersion).append(kLineEnd);
    m_head.append("Date and time: ").append(now.date).append(" ").append(now.time).append(kLineEnd);
    m_head.append("VB Error No. ").append(std::to_string(error.number())).append(kLineEnd);
    m_head.append("VB Error Description: ").append(error.description()).append(kLineEnd);
  }
  m_batch.append(m_head);
}

/// The order is not that of the record; tools that read the log rely on it.
void ErrorLog::addDump(const UserAct& record) {
  addLine("DATA USERACT-------------------------");
  addField("Connect time:", record.ConnectTime);
  addField("IP:", record.IP);
  addField("Position:", std::to_string(record.Position));
  addField("Logon time:", record.LogonTime);
  addField("Logoff time:", record.LogoffTime);
  addField("Name:", record.Name);
  addField("Number in log:", record.NumberInLog);
  addField("Logon position:", std::to_string(record.LogonNo));
  addField("TreeIndex:", std::to_string(record.TreeIndex));
  addLine("Len(userAct) = ", std::to_string(kNominalRecordLength));
}

void ErrorLog::addLine(std::string_view text, std::string_view value) {
  m_batch.append(text).append(value).append(kLineEnd);
}

void ErrorLog::addField(std::string_view label, std::string_view value) {
  constexpr std::size_t kValueColumn = 20;
  appendAtColumn(m_batch, label, kValueColumn, value.substr(0, kLongestValue));
  m_batch.append(kLineEnd);
}

void ErrorLog::endBlock() {
  for (std::size_t i = 0; i < kEmptyLinesBehindBlock; ++i)
    m_batch.append(kLineEnd);
  if (m_batch.size() < kBatchSize) return;
  m_writer.append(m_batch);
  m_head.clear();
}

}  // namespace quorvel
