// The result of a count as text: for the result window, and as a block for a file.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "classic/counter/transfer_count.h"
#include "log/file_system.h"
#include "log/result.h"

namespace quorvel {

struct CounterResultOptions {
  /// Shows the byte sums in the window; a block shows them always.
  bool countBytes = true;
  /// Points to the file of bad transfers: in the window when there are any, in a block always.
  bool getFilenameOnTransferError = false;
  std::filesystem::path badTransfersPath;
};

/// The text of the result window.
[[nodiscard]] std::string counterResultText(const TransferCount& totals, const CounterResultOptions& options);

/// The block that is appended to a file. description says what was counted.
[[nodiscard]] std::string counterResultBlock(const TransferCount& totals, std::string_view description,
                                             const CounterResultOptions& options);

/// Appends the block to a file, which is created when missing.
Status AppendCounterResult(FileSystem& files, const std::filesystem::path& path, const TransferCount& totals,
                           std::string_view description, const CounterResultOptions& options);

}  // namespace quorvel
