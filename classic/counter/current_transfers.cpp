#include <algorithm>
#include <string>
#include <vector>

#include "classic/counter/transfer_counter.h"
#include "classic/find/current_sessions.h"

namespace quorvel {
namespace {

/// By row of the tables: whether a session is one of the list's.
std::vector<bool> chosenRows(const Activity& activity, const SessionList* sessions) {
  std::vector<bool> chosen(activity.sessions.size(), sessions == nullptr);
  if (sessions == nullptr) return chosen;
  std::vector<LogPosition> positions(sessions->size());
  for (std::size_t index = 0; index < positions.size(); ++index)
    positions[index] = sessions->position(index);
  std::sort(positions.begin(), positions.end());
  for (std::size_t row = 0; row < chosen.size(); ++row)
    chosen[row] = std::binary_search(positions.begin(), positions.end(), positionOf(activity, activity.sessions[row]));
  return chosen;
}

void addGood(std::int32_t& files, std::int64_t& sum, const ActionRow& action, bool countBytes) {
  countMore(files, 1);
  if (!countBytes || action.bytes < 0) return;
  if (const auto bytes = parseFixedPoint(std::to_string(action.bytes))) addBytes(sum, *bytes);
}

void countAction(const ActionRow& action, bool countBytes, TransferCount& totals) {
  const bool isDownload = action.action == FileAction::Download;
  if (action.outcome == Outcome::Failed) {
    countMore(isDownload ? totals.SendErrors : totals.ReceiveErrors, 1);
  } else if (isDownload) {
    addGood(totals.SentFiles, totals.BytesSent, action, countBytes);
  } else {
    addGood(totals.ReceivedFiles, totals.BytesReceived, action, countBytes);
  }
}

/// The beginning of the line that starts there, up to 64 KB, as long as that of a classic log in front of the number.
Result<std::string> lineAt(const LogFile& log, LogPosition position) {
  std::string line(64 * 1024, '\0');
  for (std::size_t size : {std::size_t{1024}, line.size()}) {
    const auto count = log.readAt(position + 1, std::span(line).first(size));
    if (!count.isOk()) return count.error();
    const auto end = std::string_view(line).substr(0, count.value()).find_first_of("\r\n");
    if (end == std::string_view::npos && count.value() == size && size < line.size()) continue;
    return line.substr(0, std::min(end, count.value()));
  }
  return line;
}

}  // namespace

Status countCurrentTransfers(const LogFile& log, SessionList* sessions, const CountOptions& options,
                             TransferCount& totals, CountObserver& observer) {
  const auto tables = readCurrentLog(log, [&observer](LogPosition readTo) { return observer.keepGoing(readTo); });
  if (!tables.isOk()) return tables.error();
  const Activity& activity = tables.value();
  const std::vector<bool> isChosen = chosenRows(activity, sessions);
  std::vector<RowNumber> failures;
  for (RowNumber row = 0; row < activity.actions.size(); ++row) {
    const ActionRow& action = activity.actions[row];
    if (!action.isTransfer() || action.outcome == Outcome::Unknown || !isChosen[action.session]) continue;
    if (action.outcome == Outcome::Failed) failures.push_back(row);
    countAction(action, options.countBytes, totals);
  }
  if (!options.showsFailures) return {};
  const auto sessionOf = [&activity](RowNumber row) { return activity.actions[row].session; };
  if (sessions != nullptr)
    std::stable_sort(failures.begin(), failures.end(),
                     [&](RowNumber a, RowNumber b) { return sessionOf(a) < sessionOf(b); });
  for (const RowNumber row : failures) {
    const auto line = lineAt(log, static_cast<LogPosition>(activity.actions[row].position));
    if (!line.isOk()) return line.error();
    observer.onFailedTransfer(line.value(), row == failures.front());
  }
  return {};
}

}  // namespace quorvel
