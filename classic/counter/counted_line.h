// One line of the log that holds a transfer, added to the totals.
#pragma once

#include <optional>
#include <string_view>

#include "classic/counter/transfer_counter.h"
#include "classic/counter/transfer_tokens.h"

namespace quorvel {

// The byte count stands between the first of each in the line.
inline constexpr std::string_view kBeforeByteCount = "Kb/sec - ";
inline constexpr std::string_view kAfterByteCount = " bytes)";

/// Totals under way, with all that counting a line needs.
struct CountRun {
  CountOptions options;
  TransferCount& totals;
  CountObserver& observer;
};

/// The text of the byte count in line; empty when there is none.
[[nodiscard]] std::string_view byteCountText(std::string_view line);

/// Counts a line by its tokens: as one transfer, whatever it holds. byteCount is the text of its byte count.
void countLine(const TransferTokens& tokens, std::string_view line, std::string_view byteCount, CountRun& run);

}  // namespace quorvel
