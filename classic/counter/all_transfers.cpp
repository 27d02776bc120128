#include <algorithm>
#include <cstring>
#include <string>

#include "classic/counter/counted_line.h"
#include "classic/counter/transfer_counter.h"
#include "log/byte_scan.h"

namespace quorvel {
namespace {

static_assert(kBlockTail >= kLongestToken);

/// Finds the lines with tokens in the blocks of a log, in their order. Runs on the reading thread.
class TransferScan {
 public:
  explicit TransferScan(const LogFile& log) : m_logLength(log.length()) {}

  /// Leaves begin, end and tokens of each line that ends in the block in its findings.
  void search(LogBlock& block) {
    scanBytes(ScanFor::Transfers, block.data(), block.count, block.offsets);
    for (const std::uint32_t offset : block.offsets) {
      const auto left = static_cast<std::size_t>(m_logLength + 1 - block.first) - offset;  // blanks follow the log
      TransferTokens tokens;
      tokens.addStartOf({block.data() + offset, std::min(left, kLongestToken)});
      if (!tokens.any()) continue;
      endLine(block, offset);
      if (!m_tokens.any()) m_lineBegin = lineBegin(block, offset);
      m_tokens.add(tokens);
    }
    endLine(block, block.count);
    if (!m_tokens.any()) m_lineBegin = lineBegin(block, block.count);
    if (block.end() > m_logLength && m_tokens.any()) addLine(block, block.end());
    m_searched = 0;
  }

 private:
  /// Ends the line with tokens under way if it ends in front of offset.
  void endLine(LogBlock& block, std::size_t offset) {
    if (!m_tokens.any()) return;
    const void* const end = std::memchr(block.data() + m_searched, '\n', offset - m_searched);
    m_searched = offset;
    if (end == nullptr) return;
    const LogPosition position = block.first + (static_cast<const char*>(end) - block.data());
    addLine(block, position);
    m_lineBegin = position + 1;
  }

  void addLine(LogBlock& block, LogPosition end) {
    block.findings.push_back(static_cast<std::uint64_t>(m_lineBegin));
    block.findings.push_back(static_cast<std::uint64_t>(end));
    block.findings.push_back((m_tokens.sent ? 1u : 0u) | (m_tokens.received ? 2u : 0u) |
                             (m_tokens.sendError ? 4u : 0u) | (m_tokens.receiveError ? 8u : 0u));
    m_tokens = {};
  }

  /// Where the line that holds offset begins.
  [[nodiscard]] LogPosition lineBegin(const LogBlock& block, std::size_t offset) {
    m_searched = offset;
    const std::size_t end = std::string_view(block.data(), offset).rfind('\n');
    return end == std::string_view::npos ? m_lineBegin : block.first + static_cast<LogPosition>(end) + 1;
  }

  const LogPosition m_logLength;
  LogPosition m_lineBegin = 1;  ///< of the line under way
  TransferTokens m_tokens;      ///< in it
  std::size_t m_searched = 0;   ///< so much of the block, for its end
};

/// The text between two places of the log, from the block at hand where it holds it.
LogLine lineAt(const LogFile& log, const LogBlock& block, LogPosition begin, LogPosition end, std::string& scratch) {
  LogLine line{begin, end, {}};
  if (line.isLong()) {
    char last = '\n';
    const auto read = log.readAt(end - 1, {&last, 1});
    if (read.isOk() && last == '\r') --line.end;
    return line;
  }
  if (block.holds(begin)) {
    line.text = {block.data() + (begin - block.first), static_cast<std::size_t>(end - begin)};
  } else {
    scratch.resize(static_cast<std::size_t>(end - begin));
    const auto count = log.readAt(begin, scratch);
    line.text = std::string_view(scratch).substr(0, count.isOk() ? count.value() : 0);
  }
  if (line.text.ends_with('\r')) line.text.remove_suffix(1);
  return line;
}

}  // namespace

Status CountAllTransfers(const LogFile& log, const CountOptions& options, TransferCount& totals,
                         CountObserver& observer, std::size_t blockSize) {
  TransferScan scan(log);
  LineCounter counter(log, options, totals);
  BlockReader reader(log, 1, blockSize, [&scan](LogBlock& block) { scan.search(block); });
  std::string scratch;
  bool goesOn = true;
  while (auto block = goesOn ? reader.next() : nullptr) {
    for (std::size_t index = 0; index < block->findings.size(); index += 3) {
      const auto begin = static_cast<LogPosition>(block->findings[index]);
      const auto end = static_cast<LogPosition>(block->findings[index + 1]);
      const LogLine line = lineAt(log, *block, begin, end, scratch);
      const std::uint64_t found = block->findings[index + 2];
      const TransferTokens tokens{(found & 1) != 0, (found & 2) != 0, (found & 4) != 0, (found & 8) != 0};
      if (options.showsFailures && tokens.isFailure())
        observer.onFailedTransfer(counter.shown(line), totals.SendErrors == 0 && totals.ReceiveErrors == 0);
      counter.count(tokens, line, 1);
    }
    goesOn = observer.keepGoing(block->end() - 1);
    reader.recycle(std::move(block));
  }
  return reader.status().isOk() ? counter.status() : reader.status();
}

}  // namespace quorvel
