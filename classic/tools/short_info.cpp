#include "classic/tools/short_info.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

#include "classic/tools/report_head.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::size_t kBatchBytes = 256 * 1024;

using Values = std::array<std::string_view, kShortInfoColumns.size()>;

/// A line break inside a value would tear the table's line apart.
char withoutLineBreak(char c) {
  return c == '\r' || c == '\n' ? ' ' : c;
}

void appendLine(std::string& text, ShortInfoChoice columns, const Values& values) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!columns.test(i)) continue;
    const std::size_t width = kShortInfoColumns[i].width;
    const std::string_view value = values[i].substr(0, width);
    std::transform(value.begin(), value.end(), std::back_inserter(text), withoutLineBreak);
    text.append(width - value.size(), ' ');
  }
  text += kLineEnd;
}

}  // namespace

Result<ShortInfoTable> ShortInfoTable::create(FileSystem& files, const std::filesystem::path& path,
                                              ShortInfoChoice columns) {
  auto file = files.open(path, OpenMode::Replace);
  if (!file.isOk()) return file.error();
  return ShortInfoTable(std::move(file.value()), path, columns);
}

ShortInfoTable::ShortInfoTable(std::unique_ptr<File> file, std::filesystem::path path, ShortInfoChoice columns)
    : m_file(std::move(file)), m_path(std::move(path)), m_columns(columns) {}

void ShortInfoTable::WriteShortInfoHeader(const std::filesystem::path& log, const DateTime& now) {
  m_batch += reportHead(log, now);
  Values headers;
  std::transform(kShortInfoColumns.begin(), kShortInfoColumns.end(), headers.begin(),
                 [](const ShortInfoColumn& column) { return column.header; });
  appendLine(m_batch, m_columns, headers);
}

void ShortInfoTable::WriteShortInfoLine(const UserAct& record) {
  const std::string position = std::to_string(record.Position);
  const std::string logonNo = std::to_string(record.LogonNo);
  const std::string treeIndex = std::to_string(record.TreeIndex);
  appendLine(
      m_batch, m_columns,
      {record.Name, record.IP, record.LogonTime, record.LogoffTime, record.NumberInLog, position, logonNo, treeIndex});
  flushWhenLarge();
}

void ShortInfoTable::flushWhenLarge() {
  if (m_batch.size() >= kBatchBytes) std::ignore = flush();
}

Status ShortInfoTable::flush() {
  if (m_failure.isOk()) {
    const Status written = m_file->appendLines(m_batch);
    if (!written.isOk()) m_failure = Error{written.error().code, m_path};
  }
  m_batch.clear();
  return m_failure;
}

}  // namespace quorvel
