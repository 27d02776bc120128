// A log read forward once: blocks are read and searched ahead, and the part read last stays there to look at.
#pragma once

#include <functional>

#include "log/block_reader.h"
#include "log/block_window.h"
#include "log/log_file.h"

namespace quorvel {

class LogStream {
 public:
  /// Takes what the search found in the block read last; false ends the reading as if the log ended there.
  using Take = std::function<bool(const LogBlock& block)>;

  /// The log must outlive the stream.
  LogStream(const LogFile& log, std::size_t blockSize, BlockReader::Search search, Take take);

  /// Reads one more block; false at the end of the log and after a failure.
  bool readMore() { return !m_isAtEnd && readBlock(); }
  /// Whether readMore() would read nothing.
  [[nodiscard]] bool isAtEnd() const { return m_isAtEnd; }

  /// Position of the last byte read.
  [[nodiscard]] LogPosition readTo() const { return m_readTo; }

  [[nodiscard]] BlockWindow& window() { return m_window; }
  /// What kept the log from being read.
  [[nodiscard]] const Status& status() const { return m_status.isOk() ? m_window.status() : m_status; }

 private:
  bool readBlock();

  const Take m_take;
  BlockWindow m_window;
  BlockReader m_reader;
  LogPosition m_readTo = 0;
  bool m_isAtEnd = false;
  Status m_status;
};

}  // namespace quorvel
