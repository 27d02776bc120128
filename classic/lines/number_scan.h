// Finds the session numbers in a log, the lines they stand in, and the server starts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "classic/find/log_marks.h"
#include "classic/lines/session_lines.h"
#include "log/block_reader.h"

namespace quorvel {

// Marks of a session number beside those of the rule.
inline constexpr std::uint32_t kNumberMark = 1u << 24;   ///< every number has it
inline constexpr std::uint32_t kConnectMark = 1u << 25;  ///< " - ", the number, " Connected to "

struct LineEvent {
  enum Kind : std::uint32_t {
    Number,
    ServerStart,
    LineEnd,  ///< of a line that has one of the others
  };

  Kind kind = Number;
  LogPosition position = 0;   ///< of the number's first byte, of the server start, or behind the line's last byte
  SessionId id = 0;           ///< of a number
  std::uint32_t marks = 0;    ///< of a number
  LogPosition lineBegin = 0;  ///< of a LineEnd
};

/// Searches the blocks of one log in their order. Runs on the reading thread.
class NumberScan {
 public:
  /// rule and log must outlive the scan. Reading starts at position first, the block's first byte.
  NumberScan(const LineRule& rule, const LogFile& log, LogPosition first)
      : m_rule(rule), m_logLength(log.length()), m_lineBegin(first) {}

  /// Leaves the events of the block in its findings. A log that ends without a line end has one after its last byte.
  void search(LogBlock& block);

 private:
  void examineNumber(LogBlock& block, std::uint32_t offset);
  void endLine(LogBlock& block, std::size_t offset);

  const LineRule& m_rule;
  const LogPosition m_logLength;
  LogPosition m_lineBegin;
  bool m_hasEvents = false;  ///< in the line under way
};

/// Takes the next event off the findings of a block, from index on, which moves on.
[[nodiscard]] LineEvent takeEvent(const LogBlock& block, std::size_t& index);

}  // namespace quorvel
