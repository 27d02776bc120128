// One line of the log that holds a transfer, added to the totals.
#pragma once

#include <string>
#include <string_view>

#include "classic/counter/transfer_counter.h"
#include "classic/counter/transfer_tokens.h"

namespace quorvel {

/// Where a text stands next in a line that is too long for memory.
class TextInLongLine {
 public:
  explicit TextInLongLine(std::string_view text) : m_text(text) {}
  /// Its first place in [begin, end) of the log, end when there is none. What was read is not read again by a search
  /// from a later place in the same line.
  [[nodiscard]] LogPosition find(const LogFile& log, LogPosition begin, LogPosition end, Status& status);

 private:
  const std::string_view m_text;
  LogPosition m_from = 0;  ///< the last search
  LogPosition m_end = 0;
  LogPosition m_found = 0;
};

/// Adds lines to the totals. Lines of one log are to come in its order.
class LineCounter {
 public:
  /// All references must outlive the counter.
  LineCounter(const LogFile& log, const CountOptions& options, TransferCount& totals)
      : m_log(log), m_options(options), m_totals(totals) {}

  /// Counts a line by its tokens: as one transfer, whatever it holds, and so many times.
  void count(const TransferTokens& tokens, const LogLine& line, std::uint32_t times);
  /// The line, or both its ends.
  [[nodiscard]] std::string shown(const LogLine& line);
  /// What kept a long line from being read.
  [[nodiscard]] const Status& status() const { return m_status; }

 private:
  void countGood(std::int32_t& files, std::int64_t& sum, const LogLine& line, std::uint32_t times);
  [[nodiscard]] std::string byteCount(const LogLine& line);
  [[nodiscard]] std::string read(LogPosition begin, LogPosition end);

  const LogFile& m_log;
  const CountOptions m_options;
  TransferCount& m_totals;
  TextInLongLine m_beforeByteCount{"Kb/sec - "};
  TextInLongLine m_afterByteCount{" bytes)"};
  Status m_status;
};

}  // namespace quorvel
