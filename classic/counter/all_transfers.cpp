#include <algorithm>
#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "classic/counter/counted_line.h"
#include "classic/counter/transfer_counter.h"
#include "log/byte_scan.h"
#include "log/log_stream.h"

namespace quorvel {
namespace {

/// A longer line is looked through in pieces, never taken whole.
constexpr LogPosition kLongestWhole = 256 * 1024;
/// What is shown of both ends of such a line.
constexpr LogPosition kShownEnd = 64 * 1024;
/// Bytes of a piece looked at again with the next one, so that nothing that lies across two is missed.
constexpr LogPosition kOverlap = 32;
static_assert(kOverlap >= kLongestToken && kOverlap >= kBeforeByteCount.size() && kOverlap >= kAfterByteCount.size());
static_assert(kBlockTail >= kLongestToken);

/// Leaves the positions of all tokens that start in the block in its findings.
void findTokens(LogBlock& block) {
  scanBytes(ScanFor::Transfers, block.data(), block.count, block.offsets);
  for (const std::uint32_t offset : block.offsets) {
    TransferTokens tokens;
    tokens.addStartOf({block.data() + offset, kLongestToken});
    if (tokens.any()) block.findings.push_back(static_cast<std::uint64_t>(block.first) + offset);
  }
}

/// What is noted of a line too long to take whole. Positions are 0 until something was found there.
struct LongLine {
  TransferTokens tokens;
  LogPosition byteCount = 0;
  LogPosition byteCountEnd = 0;

  /// Nothing further in the line can change what is noted.
  [[nodiscard]] bool isComplete() const { return tokens.all() && byteCount != 0 && byteCountEnd != 0; }

  void lookThrough(std::string_view part, LogPosition position) {
    if (!tokens.all()) noteTokens(part);
    noteFirst(part, position, kBeforeByteCount, kBeforeByteCount.size(), byteCount);
    noteFirst(part, position, kAfterByteCount, 0, byteCountEnd);
  }

  void noteTokens(std::string_view part) {
    const TransferTokens found = transferTokensIn(part);
    tokens.sent |= found.sent;
    tokens.received |= found.received;
    tokens.sendError |= found.sendError;
    tokens.receiveError |= found.receiveError;
  }

  static void noteFirst(std::string_view part, LogPosition position, std::string_view mark, std::size_t offset,
                        LogPosition& noted) {
    if (noted != 0) return;
    if (const auto at = part.find(mark); at != std::string_view::npos) {
      noted = position + static_cast<LogPosition>(at + offset);
    }
  }
};

class WholeLogCounter {
 public:
  WholeLogCounter(const LogFile& log, CountRun run)
      : m_run(run),
        m_stream(log, kDefaultBlockSize, findTokens, [this](const LogBlock& block) { return takeTokens(block); }) {
    m_stream.start(1);
  }

  Status run() {
    while (m_goOn) {
      if (m_tokens.empty()) {
        if (!m_stream.readMore()) break;
      } else if (m_tokens.front() < m_countedTo) {
        m_tokens.pop_front();
      } else {
        countLineAt(m_tokens.front());
      }
    }
    return m_stream.status();
  }

 private:
  bool takeTokens(const LogBlock& block) {
    for (const std::uint64_t position : block.findings)
      m_tokens.push_back(static_cast<LogPosition>(position));
    m_goOn = m_run.observer.keepGoing(m_stream.readTo());
    return m_goOn;
  }

  void countLineAt(LogPosition token) {
    const LogPosition end = m_stream.endOfLine(token);
    const LogPosition begin = m_stream.window().findLast('\n', m_countedTo, token) + 1;
    m_countedTo = end + 1;
    if (!m_goOn) return;
    if (end - begin > kLongestWhole) return countLongLine(begin, end);
    std::string_view line = m_stream.window().text(begin, static_cast<std::size_t>(end - begin));
    if (line.ends_with('\r')) line.remove_suffix(1);
    countLine(transferTokensIn(line), line, byteCountText(line), m_run);
  }

  void countLongLine(LogPosition begin, LogPosition end) {
    if (m_stream.window().text(end - 1, 1) == "\r") --end;
    LongLine line;
    for (LogPosition at = begin; at < end && m_goOn && !line.isComplete(); at += kLongestWhole) {
      line.lookThrough(textOf(at, std::min(end, at + kLongestWhole + kOverlap)), at);
      m_goOn = m_run.observer.keepGoing(at);
    }
    std::string byteCount;
    if (line.byteCount != 0 && line.byteCountEnd - line.byteCount <= kShownEnd) {
      byteCount = textOf(line.byteCount, line.byteCountEnd);
    }
    std::string shown;
    if (line.tokens.isFailure()) {
      shown = textOf(begin, begin + kShownEnd);
      shown += textOf(end - kShownEnd, end);
    }
    countLine(line.tokens, shown, byteCount, m_run);
  }

  /// The log from begin to end, not included; empty when end lies before begin.
  [[nodiscard]] std::string_view textOf(LogPosition begin, LogPosition end) {
    return m_stream.window().text(begin, static_cast<std::size_t>(std::max<LogPosition>(0, end - begin)));
  }

  CountRun m_run;
  LogStream m_stream;
  std::deque<LogPosition> m_tokens;  ///< of lines not counted yet
  LogPosition m_countedTo = 1;       ///< where the first line starts that is not counted yet
  bool m_goOn = true;
};

}  // namespace

Status CountAllTransfers(const LogFile& log, const CountOptions& options, TransferCount& totals,
                         CountObserver& observer) {
  return WholeLogCounter(log, {options, totals, observer}).run();
}

}  // namespace quorvel
