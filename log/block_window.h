// The part of a log that was read last, for looking at text again without reading it twice.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "log/block_reader.h"
#include "log/log_file.h"

namespace quorvel {

/// Keeps the blocks that were put in last, and reads earlier text again when it is asked for: a whole block where much
/// of it is, else little more than the text.
class BlockWindow {
 public:
  /// The log must outlive the window.
  BlockWindow(const LogFile& log, std::size_t blockSize);

  [[nodiscard]] std::size_t blockSize() const { return m_blockSize; }

  /// Puts a block that starts at a multiple of the block size into the window; returns the one it takes the place
  /// of, which may be null.
  std::unique_ptr<LogBlock> put(std::unique_ptr<LogBlock> block);

  /// The bytes at [from, from + count), blanks where the log has none. Valid until the next call of anything here.
  /// After a failing read blanks stand in for what could not be read; see status().
  [[nodiscard]] std::string_view text(LogPosition from, std::size_t count) {
    if (m_last != nullptr && from >= m_last->first && from + static_cast<LogPosition>(count) <= m_last->end())
      return {m_last->data() + (from - m_last->first), count};
    return textElsewhere(from, count);
  }

  /// What kept a block from being read again.
  [[nodiscard]] const Status& status() const { return m_status; }

 private:
  [[nodiscard]] std::string_view textElsewhere(LogPosition from, std::size_t count);
  [[nodiscard]] const LogBlock& blockAt(LogPosition position) {
    return m_last != nullptr && m_last->holds(position) ? *m_last : otherBlockAt(position);
  }
  [[nodiscard]] const LogBlock& otherBlockAt(LogPosition position);
  [[nodiscard]] bool isWorthABlock(std::size_t number);
  [[nodiscard]] const LogBlock& pieceAt(LogPosition position);
  void readAgain(LogPosition first, std::size_t size, LogBlock& block);
  void readAgainAhead(std::size_t number, std::unique_ptr<LogBlock>& block);

  const LogFile& m_log;
  const std::size_t m_blockSize;
  std::vector<std::unique_ptr<LogBlock>> m_blocks;  ///< block n in slot n modulo the size
  const LogBlock* m_last = nullptr;                 ///< the block or piece looked at last
  std::size_t m_nextBlock = 0;                      ///< behind the whole block that was read again last
  int m_blocksInARow = 0;                           ///< that were read again
  std::unique_ptr<BlockReader> m_ahead;             ///< reads the blocks from m_nextBlock on; null most of the time
  LogBlock m_piece;                                 ///< the part of a block that was read again last
  LogBlock m_earlierPiece;
  std::size_t m_pieceBlock = 0;  ///< the block of which parts are read
  int m_pieceCount = 0;          ///< how many were
  std::string m_scratch;
  Status m_status;
};

}  // namespace quorvel
