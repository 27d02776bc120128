// Reads a log forward in blocks, ahead of the code that uses them: a second thread reads and searches a block while
// the first still works on earlier ones.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "log/log_file.h"
#include "log/result.h"

namespace quorvel {

/// Bytes in front of a block that are there to look at, and behind it.
inline constexpr std::size_t kBlockHead = 16;
inline constexpr std::size_t kBlockTail = 4096;
inline constexpr std::size_t kDefaultBlockSize = 256 * 1024;

/// One block of a log with some bytes of its neighbours. Bytes before the log's start and behind its end are blanks.
struct LogBlock {
  LogPosition first = 0;                ///< position of the block's first byte
  std::size_t count = 0;                ///< bytes of the log in the block, without its neighbours
  std::string buffer;                   ///< kBlockHead bytes, the block, kBlockTail bytes
  std::vector<std::uint64_t> findings;  ///< what the search function left here, in a form of its own
  std::vector<std::uint32_t> offsets;   ///< memory for the search function to work in

  /// The block's first byte; readable from kBlockHead bytes before it to kBlockTail bytes behind the block.
  [[nodiscard]] const char* data() const { return buffer.data() + kBlockHead; }
  [[nodiscard]] LogPosition end() const { return first + static_cast<LogPosition>(count); }
  [[nodiscard]] bool holds(LogPosition position) const { return position >= first && position < end(); }
};

/// Reads the block of the log that starts at position first. Fails when the log has become shorter than it was.
[[nodiscard]] Status readBlock(const LogFile& log, LogPosition first, std::size_t size, LogBlock& block);

class BlockReader {
 public:
  /// Fills block.findings. Called once a block, in log order, possibly on another thread.
  using Search = std::function<void(LogBlock& block)>;

  /// Reads from position first to the log's end. The log must outlive the reader.
  BlockReader(const LogFile& log, LogPosition first, std::size_t blockSize, Search search);
  BlockReader(const BlockReader&) = delete;
  BlockReader& operator=(const BlockReader&) = delete;
  /// Stops reading; does not wait for the log's end.
  ~BlockReader();

  /// The next block, or null at the end of the log or after a failure; see status().
  [[nodiscard]] std::unique_ptr<LogBlock> next();
  /// Hands a block's memory back for later ones.
  void recycle(std::unique_ptr<LogBlock> block);
  /// What kept the log from being read to its end.
  [[nodiscard]] const Status& status() const { return m_status; }

 private:
  struct Item {
    std::unique_ptr<LogBlock> block;  ///< null: the end
    Status status;
  };

  [[nodiscard]] Item readNext();
  void readAhead();

  const LogFile& m_log;
  const std::size_t m_blockSize;
  const Search m_search;
  LogPosition m_at;  ///< where the next block starts; belongs to the reading thread
  Status m_status;
  bool m_isAtEnd = false;

  std::mutex m_mutex;  ///< guards the members below
  std::condition_variable m_changed;
  std::vector<Item> m_ready;  ///< room for all is reserved
  std::vector<std::unique_ptr<LogBlock>> m_spare;
  bool m_isStopping = false;
  std::thread m_thread;  ///< not running for a log of a block or two, nor where there can be none
};

}  // namespace quorvel
