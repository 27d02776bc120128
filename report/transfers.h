// Transfers, and what became of those that broke off.
#pragma once

#include <memory>
#include <vector>

#include "report/table.h"

namespace quorvel {

struct TransferRow : ActionRow {
  std::uint32_t triedAgain = 0;  ///< times that its user moved the same file the same way, until it went over
  LogTime finished = kNoTime;    ///< when it went over in the end; failed ones only
  bool isFinished = false;       ///< it did, at whatever time
  RowNumber number = 0;          ///< of the action
};

enum class TransferChoice {
  Broken,  ///< those that failed
  All
};

/// The transfers among actions, in their order. Later attempts count whether they are among actions or not.
[[nodiscard]] std::vector<TransferRow> transfers(const Activity& activity, const std::vector<RowNumber>& actions,
                                                 TransferChoice choice);
/// The columns of actions, and speed (bytes a second), tried_again, finished (flag), finished_at.
[[nodiscard]] std::unique_ptr<Table> transfersTable(const Activity& activity, const std::vector<RowNumber>& actions,
                                                    TransferChoice choice);

}  // namespace quorvel
