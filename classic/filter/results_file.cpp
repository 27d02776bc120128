#include "classic/filter/results_file.h"

#include <algorithm>
#include <utility>

#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::size_t kBatchSize = 1024 * 1024;
constexpr std::string_view kBlockEnd = "\r\n\r\n\r\n\r\n";

}  // namespace

ResultsFile::ResultsFile(FileSystem& files, std::filesystem::path path) : m_files(files), m_path(std::move(path)) {}

ResultsFile::~ResultsFile() {
  flush();
}

void ResultsFile::beginBlock() {
  if (m_isInBlock) return;
  if (!m_hasBlock) open();
  m_hasBlock = m_isInBlock = true;
  m_blockBegin = m_length;
}

void ResultsFile::write(std::string_view piece) {
  beginBlock();
  m_batch.append(piece);
  m_length += piece.size();
  if (m_batch.size() >= kBatchSize && m_appender) m_appender->append(m_batch);
}

void ResultsFile::endSession() {
  beginBlock();
  m_linesEnd = m_length;
  write(kBlockEnd);
  m_isInBlock = false;
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

Status ResultsFile::copyLastLines(std::size_t headerSize, const std::filesystem::path& target) {
  flush();
  if (!m_status.isOk()) return m_status;
  auto copy = m_files.open(target, OpenMode::Replace, Owner::Program);
  if (!copy.isOk()) return copy.error();
  std::string piece;
  for (std::uint64_t at = m_blockBegin + headerSize; at < m_linesEnd; at += piece.size()) {
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
