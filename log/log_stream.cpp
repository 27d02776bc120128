#include "log/log_stream.h"

#include <utility>

namespace quorvel {

LogStream::LogStream(const LogFile& log, std::size_t blockSize, BlockReader::Search search, Take take)
    : m_log(log), m_search(std::move(search)), m_take(std::move(take)), m_window(log, blockSize) {}

void LogStream::start(LogPosition position) {
  const auto blockSize = static_cast<LogPosition>(m_window.blockSize());
  const LogPosition first = (position - 1) / blockSize * blockSize + 1;
  m_reader.reset();  // one reading thread at a time
  m_reader = std::make_unique<BlockReader>(m_log, first, m_window.blockSize(), m_search);
  m_readTo = first - 1;
  m_isAtEnd = false;
}

bool LogStream::readBlock() {
  auto block = m_reader->next();
  if (!block) {
    if (!m_reader->status().isOk()) m_status = m_reader->status();
    m_isAtEnd = true;
    return false;
  }
  const LogBlock& taken = *block;
  m_readTo = taken.end() - 1;
  if (auto displaced = m_window.put(std::move(block))) m_reader->recycle(std::move(displaced));
  if (!m_take(taken)) m_isAtEnd = true;
  return !m_isAtEnd;
}

LogPosition LogStream::endOfLine(LogPosition position) {
  while (true) {
    const LogPosition known = m_readTo + 1;
    const LogPosition end = m_window.find('\n', position, known);
    if (end < known || !readMore()) return end;
    position = known;
  }
}

}  // namespace quorvel
