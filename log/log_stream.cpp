#include "log/log_stream.h"

#include <utility>

namespace quorvel {

LogStream::LogStream(const LogFile& log, std::size_t blockSize, BlockReader::Search search, Take take)
    : m_take(std::move(take)), m_window(log, blockSize), m_reader(log, 1, blockSize, std::move(search)) {}

bool LogStream::readBlock() {
  auto block = m_reader.next();
  if (!block) {
    if (!m_reader.status().isOk()) m_status = m_reader.status();
    m_isAtEnd = true;
    return false;
  }
  const LogBlock& taken = *block;
  m_readTo = taken.end() - 1;
  if (auto displaced = m_window.put(std::move(block))) m_reader.recycle(std::move(displaced));
  if (!m_take(taken)) m_isAtEnd = true;
  return !m_isAtEnd;
}

}  // namespace quorvel
