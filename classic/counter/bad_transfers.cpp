#include "classic/counter/bad_transfers.h"

#include <algorithm>
#include <utility>

#include "log/clock.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::size_t kBatchSize = 256 * 1024;
/// What stands in front of the session number: the bracket counter, the stamp and " - ".
constexpr std::size_t kPrefixLength = 27;

std::string runHeader() {
  constexpr std::size_t kDateColumn = 20;
  constexpr std::size_t kTimeColumn = 40;
  constexpr std::size_t kRuleLength = 52;
  const DateTime now = localNow();
  const std::string dated = atColumn("Counter ran at:", kDateColumn, "Date: " + now.date);
  return "\r\n\r\n\r\n" + atColumn(dated, kTimeColumn, "Time: " + now.time) + "\r\n" + std::string(kRuleLength, '-') +
         "\r\n";
}

}  // namespace

BadTransferLog::BadTransferLog(FileSystem& files, std::filesystem::path path)
    : m_files(files), m_path(std::move(path)) {}

BadTransferLog::~BadTransferLog() {
  flush();
}

void BadTransferLog::LogBadTransfer(std::string_view line, bool isFirst) {
  if (isFirst) m_batch.append(runHeader());
  m_batch.append(line.substr(std::min(kPrefixLength, line.size()))).append(kLineEnd);
  if (m_batch.size() >= kBatchSize) flush();
}

void BadTransferLog::flush() {
  if (m_batch.empty()) return;
  if (!m_file) {
    auto opened = m_files.openToAppendLines(m_path, Owner::Program);
    if (opened.isOk()) m_file = std::move(opened.value());
  }
  if (m_file) (void)m_file->appendLines(m_batch);
  m_batch.clear();
}

}  // namespace quorvel
