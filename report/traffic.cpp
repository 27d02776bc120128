#include "report/traffic.h"

#include <algorithm>
#include <chrono>
#include <map>

#include "report/cell_text.h"
#include "report/field_table.h"
#include "report/paths.h"

namespace quorvel {
namespace {

constexpr LogTime kHour = 3600;
constexpr LogTime kDay = 24 * kHour;

/// 0 Monday to 6 Sunday; the first day of 1970 was a Thursday.
std::uint32_t weekdayOf(LogTime time) {
  return (time / kDay + 3) % 7;
}

/// The first day of a time's month, as days since 1970.
std::uint32_t monthOf(LogTime time) {
  using namespace std::chrono;
  const year_month_day date(sys_days(days(time / kDay)));
  return static_cast<std::uint32_t>(sys_days(date.year() / date.month() / 1).time_since_epoch().count());
}

constexpr std::uint32_t kNoKey = UINT32_MAX;  ///< a time that is not known

/// One sum. A key is a TextId of the table's own texts, days since 1970, an hour or a weekday.
struct TrafficRow {
  std::array<std::uint32_t, 2> keys{};
  std::array<TrafficKey, 2> by{};
  LogNumber log = 0;
  bool isTotal = false;
  std::uint64_t downloads = 0;
  std::uint64_t uploads = 0;
  std::int64_t downloadBytes = 0;
  std::int64_t uploadBytes = 0;

  [[nodiscard]] std::int64_t bytes() const { return downloadBytes + uploadBytes; }
  [[nodiscard]] std::uint64_t files() const { return downloads + uploads; }
  void take(const ActionRow& action) {
    const std::int64_t size = std::max(action.bytes, std::int64_t{0});
    (action.action == FileAction::Download ? downloads : uploads) += 1;
    (action.action == FileAction::Download ? downloadBytes : uploadBytes) += size;
  }
};

bool isDone(const ActionRow& action) {
  return action.isTransfer() && action.outcome == Outcome::Ok;
}

bool isText(TrafficKey key) {
  return key == TrafficKey::User || key == TrafficKey::Address || key == TrafficKey::Folder;
}

/// Sums actions up. The keys' texts go into a pool of their own, where folders are put together.
class TrafficCounter {
 public:
  TrafficCounter(const Activity& activity, std::span<const TrafficKey> by) : m_activity(activity), m_by(by) {
    m_total.isTotal = true;
  }

  void take(const ActionRow& action) {
    const Keys keys = {keyOf(action, m_by[0]), m_by.size() > 1 ? keyOf(action, m_by[1]) : 0};
    if (m_last == m_sums.end() || m_last->first != keys) m_last = m_sums.try_emplace(keys).first;
    TrafficRow& row = m_last->second;
    if (row.files() == 0) row.log = action.log;
    row.take(action);
    m_total.take(action);
  }

  /// In their order, the sums of all last.
  [[nodiscard]] std::vector<TrafficRow> rows() {
    std::map<std::uint32_t, std::int64_t> bytesOfFirst;
    std::vector<TrafficRow> rows;
    rows.reserve(m_sums.size() + 1);
    for (auto& [keys, row] : m_sums) {
      row.keys = keys;
      for (std::size_t i = 0; i < m_by.size(); ++i)
        row.by[i] = m_by[i];
      bytesOfFirst[keys[0]] += row.bytes();
      rows.push_back(row);
    }
    std::stable_sort(rows.begin(), rows.end(), [&](const TrafficRow& a, const TrafficRow& b) {
      if (a.keys[0] == b.keys[0]) return isText(m_by.back()) && m_by.size() > 1 && a.bytes() > b.bytes();
      return isText(m_by[0]) && bytesOfFirst[a.keys[0]] > bytesOfFirst[b.keys[0]];
    });
    if (!rows.empty()) rows.push_back(m_total);
    return rows;
  }

  /// The logs, and the texts of the rows.
  [[nodiscard]] Activity shown() {
    Activity shown;
    shown.logs = m_activity.logs;
    shown.texts = m_texts.snapshot();
    return shown;
  }

 private:
  using Keys = std::array<std::uint32_t, 2>;

  std::uint32_t keyOf(const ActionRow& action, TrafficKey key) {
    if (!isText(key) && action.time == kNoTime) return kNoKey;
    switch (key) {
      case TrafficKey::User:
        return ownText(action.user);
      case TrafficKey::Address:
        return ownText(action.address);
      case TrafficKey::Day:
        return action.time / kDay;
      case TrafficKey::Hour:
        return action.time % kDay / kHour;
      case TrafficKey::Weekday:
        return weekdayOf(action.time);
      case TrafficKey::Month:
        return monthOf(action.time);
      case TrafficKey::Folder:
        return m_texts.add(folderOf(m_activity, action));
    }
    return kNoKey;
  }

  TextId ownText(TextId text) {
    if (m_own.empty()) m_own.resize(m_activity.texts.size());
    if (text != kNoText && m_own[text] == kNoText) m_own[text] = m_texts.add(m_activity.text(text));
    return m_own[text];
  }

  const Activity& m_activity;
  std::span<const TrafficKey> m_by;
  TextPool m_texts;
  std::vector<TextId> m_own;  ///< by TextId of the activity: the number among m_texts, kNoText not yet
  std::map<Keys, TrafficRow> m_sums;
  std::map<Keys, TrafficRow>::iterator m_last = m_sums.end();
  TrafficRow m_total;
};

std::string twoDigits(std::uint32_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

template <std::size_t Index>
Cell keyCell(const CellMaker& make, const TrafficRow& row) {
  const std::uint32_t key = row.keys[Index];
  if (row.isTotal) return CellMaker::name(Index == 0 ? "total" : "");
  if (isText(row.by[Index])) return make.text(key, row.log);
  if (key == kNoKey) return {};
  switch (row.by[Index]) {
    case TrafficKey::Hour:
      return make.keptName(twoDigits(key));
    case TrafficKey::Weekday:
      return CellMaker::name(weekdayName(key), key + 1);
    case TrafficKey::Month:
      return make.keptName(dayText(key * kDay).substr(0, 7));
    default:
      return make.keptName(dayText(key * kDay));
  }
}

constexpr auto kSumFields = std::to_array<Field<TrafficRow>>({
    {{"files", "Files", CellKind::Count},
     [](const CellMaker&, const TrafficRow& row) { return CellMaker::count(row.files()); }},
    {{"bytes", "Size", CellKind::Bytes},
     [](const CellMaker&, const TrafficRow& row) { return CellMaker::bytes(row.bytes()); }},
    countField<TrafficRow, &TrafficRow::downloads>("downloads", "Downloads"),
    bytesField<TrafficRow, &TrafficRow::downloadBytes>("download_bytes", "Downloaded"),
    countField<TrafficRow, &TrafficRow::uploads>("uploads", "Uploads"),
    bytesField<TrafficRow, &TrafficRow::uploadBytes>("upload_bytes", "Uploaded"),
});

Column keyColumn(TrafficKey key) {
  constexpr std::array<std::string_view, 7> kTitles = {"User", "Address", "Day", "Hour", "Weekday", "Month", "Folder"};
  const auto index = static_cast<std::size_t>(key);
  return {kTrafficKeyNames[index], kTitles[index], isText(key) ? CellKind::Text : CellKind::Name};
}

}  // namespace

std::optional<TrafficKey> trafficKey(std::string_view name) {
  const auto* const known = std::find(kTrafficKeyNames.begin(), kTrafficKeyNames.end(), name);
  if (known == kTrafficKeyNames.end()) return std::nullopt;
  return static_cast<TrafficKey>(known - kTrafficKeyNames.begin());
}

std::unique_ptr<Table> trafficTable(const Activity& activity, const std::vector<RowNumber>& actions,
                                    std::span<const TrafficKey> by) {
  TrafficCounter counter(activity, by);
  for (const RowNumber row : actions) {
    if (isDone(activity.actions[row])) counter.take(activity.actions[row]);
  }
  std::vector<Field<TrafficRow>> fields = {{keyColumn(by[0]), keyCell<0>}};
  if (by.size() > 1) fields.push_back({keyColumn(by[1]), keyCell<1>});
  fields.insert(fields.end(), kSumFields.begin(), kSumFields.end());
  std::vector<TrafficRow> rows = counter.rows();
  const std::size_t totalRows = rows.empty() ? 0 : 1;
  return std::make_unique<FieldTable<TrafficRow>>("traffic", counter.shown(), fields, nullptr, std::move(rows),
                                                  totalRows);
}

std::string_view weekdayName(std::size_t weekday) {
  constexpr std::array<std::string_view, 7> kWeekdays = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
  return kWeekdays[weekday];
}

WeekByHour weekByHour(const Activity& activity, const std::vector<RowNumber>& actions) {
  WeekByHour week{};
  for (const RowNumber row : actions) {
    const ActionRow& action = activity.actions[row];
    if (!isDone(action) || action.time == kNoTime) continue;
    week[weekdayOf(action.time)][action.time % kDay / kHour] += std::max(action.bytes, std::int64_t{0});
  }
  return week;
}

}  // namespace quorvel
