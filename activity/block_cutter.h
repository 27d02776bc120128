// Cuts a log into blocks of whole lines, for many threads to read.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "grammar/grammar.h"
#include "log/log_source.h"
#include "log/result.h"

namespace quorvel {

/// Lines that one dialect holds for.
struct DialectRange {
  std::size_t begin = 0;  ///< in the block's bytes
  std::shared_ptr<const Dialect> dialect;
};

/// A piece of a log that ends with a line end, but for one that is all of a block or more, and for the log's last line.
struct Block {
  std::vector<char> buffer;
  std::size_t size = 0;
  std::uint64_t position = 1;  ///< of the first byte in the log
  std::size_t continued = 0;   ///< bytes in front that belong to the line which the block before ends in the middle of
  std::vector<DialectRange> dialects;  ///< at least one, in order

  [[nodiscard]] std::string_view text() const { return {buffer.data(), size}; }
};

class BlockCutter {
 public:
  static constexpr std::size_t kBlockSize = 256 * 1024;

  /// source must outlive the cutter.
  explicit BlockCutter(LogSource& source) : m_source(source) {}

  /// The first bytes of the log, up to a block; call it before next() only. Valid until next().
  [[nodiscard]] Result<std::string_view> peek();
  /// What holds from the first line on.
  void begin(const Grammar& grammar, Dialect dialect);
  /// Passes so many bytes, whole lines; returns how many lines they were. For bytes that were read already elsewhere.
  [[nodiscard]] Result<std::uint64_t> skip(std::uint64_t bytes);
  /// Fills block with what comes next; false at the end. isFinal: the last line counts though it has no line end; else
  /// it waits for more to be written.
  [[nodiscard]] Result<bool> next(Block& block, bool isFinal);

 private:
  [[nodiscard]] Result<std::size_t> fill(std::vector<char>& buffer);
  void findDirectives(Block& block);

  LogSource& m_source;
  const Grammar* m_grammar = nullptr;
  std::shared_ptr<const Dialect> m_dialect;
  std::vector<char> m_carried;  ///< read already: what comes next
  std::uint64_t m_position = 1;
  bool m_isInLine = false;  ///< the block before ended in the middle of a line
};

}  // namespace quorvel
