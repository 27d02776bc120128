// Counts the transfers a log reports: those of chosen sessions, or all of them.
#pragma once

#include <string_view>

#include "classic/counter/transfer_count.h"
#include "classic/lines/session_lines.h"
#include "log/log_file.h"
#include "log/result.h"

namespace quorvel {

struct CountOptions {
  /// Adds up the byte counts of good transfers.
  bool countBytes = true;
  /// Shows the lines of failed transfers to the observer.
  bool showsFailures = false;
};

/// What a count tells while it runs.
class CountObserver {
 public:
  virtual ~CountObserver() = default;
  /// Called for the line of each failed transfer, session after session; isFirst: none was counted before it. line is
  /// valid during the call; of a line of several 100 KB it is the first and the last 64 KB.
  virtual void onFailedTransfer(std::string_view line, bool isFirst) = 0;
  /// Called at least once per megabyte of log read. Returns false to stop; the totals so far stay.
  virtual bool keepGoing(LogPosition position) = 0;
};

/// Adds the transfers of each session to totals: from its connect line to its closing line, or the log's end. A
/// session with Position 0, or without a connect line, adds nothing. An error means that the log could not be read to
/// the end; what was counted before stays.
Status CountSessionTransfers(const LogFile& log, SessionList& sessions, const CountOptions& options,
                             TransferCount& totals, CountObserver& observer, const LineReading& reading);

/// Adds every transfer line of the log to totals, in one pass with bounded memory however long a line is.
Status CountAllTransfers(const LogFile& log, const CountOptions& options, TransferCount& totals,
                         CountObserver& observer, std::size_t blockSize = kDefaultBlockSize);

/// The same for a log in the current shape: those of chosen sessions, or of all where sessions is null. Files are those
/// of the activity tables; one of which the log does not tell how it went is not counted.
Status countCurrentTransfers(const LogFile& log, SessionList* sessions, const CountOptions& options,
                             TransferCount& totals, CountObserver& observer);

}  // namespace quorvel
