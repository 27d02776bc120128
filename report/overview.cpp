#include "report/overview.h"

#include <algorithm>

#include "report/cell_text.h"
#include "report/field_table.h"
#include "report/files.h"
#include "report/logins.h"
#include "report/viewed_table.h"

namespace quorvel {
namespace {

/// How many distinct texts there are among those that were taken.
class Distinct {
 public:
  explicit Distinct(const Activity& activity) : m_seen(activity.texts.size()) {}
  void take(TextId text) {
    if (text == kNoText || m_seen[text]) return;
    m_seen[text] = true;
    ++m_count;
  }
  [[nodiscard]] std::uint64_t count() const { return m_count; }

 private:
  std::vector<bool> m_seen;
  std::uint64_t m_count = 0;
};

void countSessions(const Activity& activity, const Selection& selection, OverviewNumbers& numbers) {
  Distinct users(activity);
  Distinct addresses(activity);
  numbers.sessions = selection.sessions.size();
  for (const RowNumber row : selection.sessions) {
    users.take(activity.sessions[row].user);
    addresses.take(activity.sessions[row].address);
  }
  numbers.users = users.count();
  numbers.addresses = addresses.count();
  for (const RowNumber row : selection.logons)
    ++(activity.logons[row].isOk() ? numbers.logons : numbers.refused);
}

void countAction(const ActionRow& action, OverviewNumbers& numbers) {
  if (action.isTransfer() && action.outcome == Outcome::Failed) ++numbers.broken;
  if (action.outcome != Outcome::Ok) return;
  const std::int64_t bytes = std::max(action.bytes, std::int64_t{0});
  switch (action.action) {
    case FileAction::Download:
      ++numbers.downloads;
      numbers.downloadBytes += bytes;
      return;
    case FileAction::Upload:
      ++numbers.uploads;
      numbers.uploadBytes += bytes;
      return;
    case FileAction::Delete:
      ++numbers.deletes;
      return;
    case FileAction::Rename:
      ++numbers.renames;
      return;
    default:
      return;
  }
}

void readLedgers(const Activity& activity, OverviewNumbers& numbers) {
  std::uint64_t understood = 0;
  std::uint64_t ours = 0;
  for (const LogInfo& log : activity.logs) {
    const Ledger& ledger = log.ledger;
    numbers.lines += ledger.lines();
    understood += ledger.understood.lines;
    ours += ledger.understood.lines + ledger.setAside.lines;
    if (ledger.first != kNoTime)
      numbers.first = numbers.first == kNoTime ? ledger.first : std::min(numbers.first, ledger.first);
    numbers.last = std::max(numbers.last, ledger.last);
  }
  numbers.understoodPercent = percentOf(understood, ours);
}

OverviewNumbers numbersOf(const Activity& activity, const Selection& selection) {
  OverviewNumbers numbers;
  readLedgers(activity, numbers);
  countSessions(activity, selection, numbers);
  for (const RowNumber row : selection.actions)
    countAction(activity.actions[row], numbers);
  return numbers;
}

constexpr auto kSummaryFields = std::to_array<Field<OverviewNumbers>>({
    timeField<OverviewNumbers, &OverviewNumbers::first>("first", "First line"),
    timeField<OverviewNumbers, &OverviewNumbers::last>("last", "Last line"),
    countField<OverviewNumbers, &OverviewNumbers::lines>("lines", "Lines"),
    {{"understood", "Understood", CellKind::Percent},
     [](const CellMaker&, const OverviewNumbers& row) { return CellMaker::percent(row.understoodPercent); }},
    countField<OverviewNumbers, &OverviewNumbers::sessions>("sessions", "Sessions"),
    countField<OverviewNumbers, &OverviewNumbers::users>("users", "Users"),
    countField<OverviewNumbers, &OverviewNumbers::addresses>("addresses", "Addresses"),
    countField<OverviewNumbers, &OverviewNumbers::logons>("logons", "Log-ons"),
    countField<OverviewNumbers, &OverviewNumbers::refused>("failed_logons", "Refused"),
    countField<OverviewNumbers, &OverviewNumbers::downloads>("downloads", "Downloads"),
    bytesField<OverviewNumbers, &OverviewNumbers::downloadBytes>("download_bytes", "Downloaded"),
    countField<OverviewNumbers, &OverviewNumbers::uploads>("uploads", "Uploads"),
    bytesField<OverviewNumbers, &OverviewNumbers::uploadBytes>("upload_bytes", "Uploaded"),
    countField<OverviewNumbers, &OverviewNumbers::broken>("failed_transfers", "Failed transfers"),
    countField<OverviewNumbers, &OverviewNumbers::deletes>("deletes", "Deletes"),
    countField<OverviewNumbers, &OverviewNumbers::renames>("renames", "Renames"),
});

struct WeekdayRow {
  std::size_t weekday;
  std::array<std::int64_t, 24> bytes;
};

template <std::size_t Hour>
Cell hourCell(const CellMaker&, const WeekdayRow& row) {
  return CellMaker::bytes(row.bytes[Hour]);
}

constexpr std::array<std::string_view, 24> kHours = {"00", "01", "02", "03", "04", "05", "06", "07",
                                                     "08", "09", "10", "11", "12", "13", "14", "15",
                                                     "16", "17", "18", "19", "20", "21", "22", "23"};

template <std::size_t... Hour>
std::vector<Field<WeekdayRow>> weekFields(std::index_sequence<Hour...>) {
  return {{{"weekday", "Weekday", CellKind::Name},
           [](const CellMaker&, const WeekdayRow& row) {
             return CellMaker::name(weekdayName(row.weekday), static_cast<std::int64_t>(row.weekday) + 1);
           }},
          {{kHours[Hour], kHours[Hour], CellKind::Bytes}, hourCell<Hour>}...};
}

std::unique_ptr<Table> weekTable(const Activity& activity, const WeekByHour& bytes) {
  std::vector<WeekdayRow> rows;
  for (std::size_t day = 0; day < bytes.size(); ++day)
    rows.push_back({day, bytes[day]});
  return std::make_unique<FieldTable<WeekdayRow>>("week", activity, weekFields(std::make_index_sequence<24>()), nullptr,
                                                  std::move(rows));
}

/// All attempts of the addresses that were refused at all; those that stand out first, then by refusals.
std::unique_ptr<Table> refusedAddresses(const Activity& activity, const Selection& selection,
                                        const Thresholds& thresholds) {
  std::vector<bool> isRefused(activity.texts.size());
  for (const RowNumber row : selection.logons) {
    if (!activity.logons[row].isOk()) isRefused[activity.logons[row].address] = true;
  }
  std::vector<RowNumber> attempts = selection.logons;
  std::erase_if(attempts, [&](RowNumber row) { return !isRefused[activity.logons[row].address]; });
  return loginsTable(activity, attempts, LoginsBy::Address, thresholds);
}

}  // namespace

Overview overview(const Activity& activity, const Selection& selection, const Thresholds& thresholds) {
  constexpr std::size_t kTop = 10;
  constexpr std::array kByUser = {TrafficKey::User};
  constexpr std::array kByDay = {TrafficKey::Day};
  Overview answer;
  answer.numbers = numbersOf(activity, selection);
  answer.findings = lookAtFirst(activity, selection, thresholds);
  answer.summary = std::make_unique<FieldTable<OverviewNumbers>>("overview", activity, kSummaryFields, nullptr,
                                                                 std::vector{answer.numbers});
  answer.topUsers = firstRows(trafficTable(activity, selection.actions, kByUser), kTop);
  answer.topAddresses = firstRows(refusedAddresses(activity, selection, thresholds), kTop);
  answer.topFolders = firstRows(foldersTable(activity, selection.actions), kTop);
  answer.days = trafficTable(activity, selection.actions, kByDay);
  answer.weekBytes = weekByHour(activity, selection.actions);
  answer.week = weekTable(activity, answer.weekBytes);
  return answer;
}

}  // namespace quorvel
