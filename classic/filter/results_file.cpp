#include "classic/filter/results_file.h"

#include <algorithm>
#include <utility>

#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::size_t kBatchSize = 1024 * 1024;
constexpr std::string_view kBlockEnd = "\r\n\r\n\r\n\r\n";

}  // namespace

void appendSessionBlockHeader(std::string& text, const UserAct& session) {
  constexpr std::size_t kRuleLength = 50;
  constexpr std::size_t kValueColumn = 20;
  text.append(kRuleLength, '-').append(kLineEnd);
  const auto add = [&text](std::string_view label, std::string_view value) {
    appendAtColumn(text, label, kValueColumn, value);
    text.append(kLineEnd);
  };
  add("Username:", session.Name);
  add("IP:", session.IP);
  add("Connect time:", session.ConnectTime);
  add("Logon time:", session.LogonTime);
  add("Logoff time:", session.LogoffTime);
  add("Number in log:", session.NumberInLog);
  add("Position:", std::to_string(session.Position));
  text.append(kLineEnd);
}

ResultsFile::ResultsFile(FileSystem& files, std::filesystem::path path) : m_files(files), m_path(std::move(path)) {}

ResultsFile::~ResultsFile() {
  flush();
}

void ResultsFile::beginSession(const UserAct& session) {
  if (!m_hasBlock) open();
  m_hasBlock = true;
  const std::size_t before = m_batch.size();
  appendSessionBlockHeader(m_batch, session);
  m_length += m_batch.size() - before;
  m_linesBegin = m_linesEnd = m_length;
}

void ResultsFile::writeLine(std::string_view line) {
  if (line.size() >= kBatchSize) {  // a huge line goes out without being copied
    flush();
    if (m_status.isOk()) m_status = m_file->appendLines(line, kLineEnd);
    m_length += line.size() + kLineEnd.size();
    return;
  }
  m_batch.append(line);
  m_length += line.size();
  write(kLineEnd);
}

void ResultsFile::endSession() {
  m_linesEnd = m_length;
  write(kBlockEnd);
}

void ResultsFile::flush() {
  if (m_appender && m_status.isOk()) m_status = m_appender->finish();
  if (m_file && m_status.isOk() && !m_batch.empty()) m_status = m_file->appendLines(m_batch);
  m_batch.clear();
}

void ResultsFile::open() {
  auto file = m_files.openToAppendLines(m_path);
  if (!file.isOk()) {
    m_status = file.error();
    return;
  }
  const auto length = file.value()->size();
  if (!length.isOk()) {
    m_status = length.error();
    return;
  }
  m_length = length.value();
  m_file = std::move(file.value());
  m_appender.emplace([this](const std::string& batch) { return m_file->appendLines(batch); });
}

void ResultsFile::write(std::string_view text) {
  m_batch.append(text);
  m_length += text.size();
  if (m_batch.size() >= kBatchSize && m_appender) m_appender->append(m_batch);
}

Status ResultsFile::copyLastLines(const std::filesystem::path& target) {
  flush();
  if (!m_status.isOk()) return m_status;
  auto copy = m_files.open(target, OpenMode::Replace, Owner::Program);
  if (!copy.isOk()) return copy.error();
  std::string piece;
  for (std::uint64_t at = m_linesBegin; at < m_linesEnd; at += piece.size()) {
    piece.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kBatchSize, m_linesEnd - at)));
    const auto count = m_file->readAt(at, piece);
    if (!count.isOk()) return count.error();
    if (count.value() < piece.size()) return Error{ErrorCode::DeviceIoError, m_path};
    Status written = copy.value()->append(piece, {});
    if (!written.isOk()) {
      (void)copy.value()->resize(0);
      return written;
    }
  }
  return {};
}

}  // namespace quorvel
