#include "log/block_window.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace quorvel {
namespace {

constexpr std::size_t kBlocksKept = 32;
/// Part of a block, enough for a line or two: the lines of a session may lie far apart.
constexpr std::size_t kPieceSize = 1024;
/// Reading so many pieces costs half as much as reading the block.
constexpr int kPiecesWorthABlock = 16;

/// So many blocks after each other, and the next ones will be asked for as well. A thread for fewer would cost more
/// than it saves, in memory too.
constexpr int kBlocksWorthAThread = 64;

}  // namespace

BlockWindow::BlockWindow(const LogFile& log, std::size_t blockSize)
    : m_log(log), m_blockSize(blockSize), m_blocks(kBlocksKept) {}

std::unique_ptr<LogBlock> BlockWindow::put(std::unique_ptr<LogBlock> block) {
  const std::size_t number = static_cast<std::size_t>(block->first - 1) / m_blockSize;
  std::swap(m_blocks[number % m_blocks.size()], block);
  m_last = nullptr;
  return block;
}

std::string_view BlockWindow::textElsewhere(LogPosition from, std::size_t count) {
  const LogPosition inside = std::clamp<LogPosition>(from, 1, std::max<LogPosition>(1, m_log.length()));
  {
    const LogBlock& block = blockAt(inside);
    const LogPosition readableFrom = block.first - static_cast<LogPosition>(kBlockHead);
    const LogPosition readableEnd = block.end() + static_cast<LogPosition>(kBlockTail);
    if (from >= readableFrom && from + static_cast<LogPosition>(count) <= readableEnd) {
      return {block.data() + (from - block.first), count};
    }
  }
  m_scratch.assign(count, ' ');
  const LogPosition end = std::min(from + static_cast<LogPosition>(count), m_log.length() + 1);
  for (LogPosition at = std::max<LogPosition>(1, from); at < end;) {
    const LogBlock& block = blockAt(at);
    const LogPosition pieceEnd = std::min(end, block.end());
    if (pieceEnd <= at) break;
    std::memcpy(m_scratch.data() + (at - from), block.data() + (at - block.first),
                static_cast<std::size_t>(pieceEnd - at));
    at = pieceEnd;
  }
  return m_scratch;
}

const LogBlock& BlockWindow::otherBlockAt(LogPosition position) {
  const std::size_t number = static_cast<std::size_t>(position - 1) / m_blockSize;
  auto& block = m_blocks[number % m_blocks.size()];
  if (!block || !block->holds(position)) {
    if (!isWorthABlock(number)) return *(m_last = &pieceAt(position));
    m_blocksInARow = number == m_nextBlock ? m_blocksInARow + 1 : 0;
    if (!block) block = std::make_unique<LogBlock>();
    if (m_blocksInARow > kBlocksWorthAThread) {
      readAgainAhead(number, block);
    } else {
      m_ahead.reset();
      readAgain(static_cast<LogPosition>(number * m_blockSize) + 1, m_blockSize, *block);
    }
    m_nextBlock = number + 1;
  }
  return *(m_last = block.get());
}

bool BlockWindow::isWorthABlock(std::size_t number) {
  if (number == m_nextBlock) return true;
  if (std::exchange(m_pieceBlock, number) != number) m_pieceCount = 0;
  return ++m_pieceCount > kPiecesWorthABlock;
}

const LogBlock& BlockWindow::pieceAt(LogPosition position) {
  if (m_earlierPiece.holds(position)) std::swap(m_piece, m_earlierPiece);
  if (m_piece.holds(position)) return m_piece;
  std::swap(m_piece, m_earlierPiece);
  const std::size_t size = std::min(kPieceSize, m_blockSize);
  const auto before = static_cast<LogPosition>(static_cast<std::size_t>(position - 1) % size);
  readAgain(position - before, size, m_piece);
  return m_piece;
}

/// On a second thread, as long as one block follows the other.
void BlockWindow::readAgainAhead(std::size_t number, std::unique_ptr<LogBlock>& block) {
  const auto first = static_cast<LogPosition>(number * m_blockSize) + 1;
  if (!m_ahead) m_ahead = std::make_unique<BlockReader>(m_log, first, m_blockSize, [](LogBlock&) {});
  auto next = m_ahead->next();
  if (!next) return readAgain(first, m_blockSize, *block);  // which says what is wrong
  m_ahead->recycle(std::exchange(block, std::move(next)));
}

void BlockWindow::readAgain(LogPosition first, std::size_t size, LogBlock& block) {
  Status read = readBlock(m_log, first, size, block);
  if (read.isOk()) return;
  std::fill(block.buffer.begin(), block.buffer.end(), ' ');
  m_status = std::move(read);
}

}  // namespace quorvel
