#include <algorithm>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "counter/counted_line.h"
#include "counter/transfer_counter.h"

namespace quorvel {
namespace {

constexpr std::size_t kBlock = 1024 * 1024;
/// A line whose beginning is longer than this is no longer kept, only looked through.
constexpr std::size_t kLongestKept = 256 * 1024;
/// What is shown of both ends of such a line.
constexpr std::size_t kShownEnd = 64 * 1024;
/// Bytes looked at again with the next block, so that nothing that lies across two blocks is missed.
constexpr std::size_t kOverlap = 32;
static_assert(kOverlap >= kLongestToken && kOverlap >= kBeforeByteCount.size() && kOverlap >= kAfterByteCount.size());

/// What is noted of a line too long to keep. Positions are 0 until something was found there.
struct LongLine {
  LogPosition begin = 0;
  LogPosition byteCount = 0;
  LogPosition byteCountEnd = 0;
  TransferTokens tokens;

  /// Looks through the next part of the line, which may start with bytes seen before.
  void lookThrough(std::string_view part, LogPosition position) {
    const TransferTokens found = transferTokensIn(part);
    tokens.sent |= found.sent;
    tokens.received |= found.received;
    tokens.sendError |= found.sendError;
    tokens.receiveError |= found.receiveError;
    noteFirst(part, position, kBeforeByteCount, kBeforeByteCount.size(), byteCount);
    noteFirst(part, position, kAfterByteCount, 0, byteCountEnd);
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
  WholeLogCounter(const LogFile& log, CountRun run) : m_log(log), m_run(run), m_buffer(kLongestKept + kBlock) {}

  Status run() {
    while (true) {
      const auto count = m_log.readAt(m_position + static_cast<LogPosition>(m_kept), free());
      if (!count.isOk()) return count.error();
      const bool atEnd = count.value() == 0;
      const std::string_view text(m_buffer.data(), m_kept + count.value());
      const std::size_t used = countBlock(text, atEnd);
      if (atEnd || !m_error.isOk()) return m_error;
      keep(text, used);
      if (!m_run.observer.keepGoing(m_position + static_cast<LogPosition>(m_kept))) return {};
    }
  }

 private:
  [[nodiscard]] std::span<char> free() { return std::span(m_buffer).subspan(m_kept, kBlock); }
  [[nodiscard]] LogPosition positionOf(std::string_view text) const {
    return m_position + (text.data() - m_buffer.data());
  }

  /// Counts all lines that are complete; returns the number of bytes done with.
  std::size_t countBlock(std::string_view text, bool atEnd) {
    std::size_t used = 0;
    if (m_longLine) {
      const auto lineEnd = text.find('\n', m_kept);
      if (lineEnd == std::string_view::npos && !atEnd) return 0;
      used = std::min(lineEnd, text.size());
      countLongLine(text.substr(0, used));
    }
    const auto lastEnd = text.rfind('\n');
    const std::size_t end = atEnd ? text.size() : lastEnd == std::string_view::npos ? used : lastEnd + 1;
    countLines(text.substr(used, end - used));
    return end;
  }

  void countLines(std::string_view text) {
    for (auto at = findTransferToken(text); at != std::string_view::npos; at = findTransferToken(text, at)) {
      const std::size_t begin = text.rfind('\n', at) + 1;  // npos + 1 is 0: the first line
      const std::size_t end = std::min(text.find('\n', at), text.size());
      countWholeLine(text.substr(begin, end - begin));
      at = end;
    }
  }

  void countWholeLine(std::string_view line) {
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    countLine(transferTokensIn(line), line, byteCountText(line), m_run);
  }

  /// Moves what is not done with to the front of the buffer, or gives the line up for keeping.
  void keep(std::string_view text, std::size_t used) {
    std::string_view rest = text.substr(used);
    if (!m_longLine && rest.size() > kLongestKept) m_longLine.emplace().begin = positionOf(rest);
    if (m_longLine) {
      m_longLine->lookThrough(rest, positionOf(rest));
      rest = rest.substr(rest.size() - std::min(rest.size(), kOverlap));
    }
    m_position = positionOf(rest);
    std::memmove(m_buffer.data(), rest.data(), rest.size());
    m_kept = rest.size();
  }

  /// The line ends behind lastPart, the part of it that is in the buffer.
  void countLongLine(std::string_view lastPart) {
    LongLine line = *m_longLine;
    m_longLine.reset();
    line.lookThrough(lastPart, m_position);
    LogPosition end = m_position + static_cast<LogPosition>(lastPart.size());
    if (lastPart.ends_with('\r')) --end;
    if (!line.tokens.any()) return;
    std::string byteCount;
    if (line.byteCount != 0 && line.byteCountEnd - line.byteCount <= static_cast<LogPosition>(kShownEnd)) {
      byteCount = textOf(line.byteCount, line.byteCountEnd);
    }
    const std::string shown = line.tokens.isFailure() ? shownText(line.begin, end) : std::string();
    countLine(line.tokens, shown, byteCount, m_run);
  }

  [[nodiscard]] std::string shownText(LogPosition begin, LogPosition end) {
    constexpr auto kEnd = static_cast<LogPosition>(kShownEnd);
    return textOf(begin, begin + kEnd) + textOf(std::max(begin + kEnd, end - kEnd), end);
  }

  /// The log from begin to end, not included; empty when end lies before begin.
  [[nodiscard]] std::string textOf(LogPosition begin, LogPosition end) {
    std::string text(static_cast<std::size_t>(std::max<LogPosition>(0, end - begin)), '\0');
    const auto count = m_log.readAt(begin, text);
    if (!count.isOk()) m_error = count.error();
    text.resize(count.isOk() ? count.value() : 0);
    return text;
  }

  const LogFile& m_log;
  CountRun m_run;
  std::vector<char> m_buffer;
  LogPosition m_position = 1;  ///< of the first byte in m_buffer
  std::size_t m_kept = 0;      ///< bytes at the front of m_buffer that are to be looked at with the next block
  std::optional<LongLine> m_longLine;
  Status m_error;
};

}  // namespace

Status CountAllTransfers(const LogFile& log, const CountOptions& options, TransferCount& totals,
                         CountObserver& observer) {
  return WholeLogCounter(log, {options, totals, observer}).run();
}

}  // namespace quorvel
