// A log read forward once: blocks are read and searched ahead, and the part read last stays there to look at.
#pragma once

#include <functional>
#include <memory>

#include "log/block_reader.h"
#include "log/block_window.h"
#include "log/log_file.h"

namespace quorvel {

class LogStream {
 public:
  /// Takes what the search found in the block read last; false ends the reading as if the log ended there.
  using Take = std::function<bool(const LogBlock& block)>;

  /// Reads nothing yet. The log must outlive the stream.
  LogStream(const LogFile& log, std::size_t blockSize, BlockReader::Search search, Take take);

  /// Reads from the block that holds position on, whatever was read before.
  void start(LogPosition position);
  /// Reads one more block; false at the end of the log, after a failure and after stop().
  bool readMore() { return !m_isAtEnd && readBlock(); }
  /// No more is read until the next start().
  void stop() { m_isAtEnd = true; }
  /// Whether readMore() would read nothing.
  [[nodiscard]] bool isAtEnd() const { return m_isAtEnd; }

  /// Position of the last byte read.
  [[nodiscard]] LogPosition readTo() const { return m_readTo; }
  /// Position of the line end at or behind position, which was read already. Reads on to it, so that everything in
  /// the line is known; where the log ends first, the position behind the last byte read.
  [[nodiscard]] LogPosition endOfLine(LogPosition position);

  [[nodiscard]] BlockWindow& window() { return m_window; }
  /// What kept the log from being read.
  [[nodiscard]] const Status& status() const { return m_status.isOk() ? m_window.status() : m_status; }

 private:
  bool readBlock();

  const LogFile& m_log;
  const BlockReader::Search m_search;
  const Take m_take;
  BlockWindow m_window;
  std::unique_ptr<BlockReader> m_reader;
  LogPosition m_readTo = 0;
  bool m_isAtEnd = true;
  Status m_status;
};

}  // namespace quorvel
