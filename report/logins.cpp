#include "report/logins.h"

#include <algorithm>
#include <tuple>

#include "report/field_table.h"

namespace quorvel {
namespace {

constexpr std::int64_t kMinute = 60;

/// The most times that lie within a period, the way they are.
class Window {
 public:
  explicit Window(std::int64_t seconds) : m_seconds(seconds) {}
  void clear() {
    m_begin = 0;
    m_most = 0;
  }
  /// times are in order; the last one is new.
  void take(const std::vector<LogTime>& times) {
    while (std::int64_t{times.back()} - times[m_begin] >= m_seconds)
      ++m_begin;
    m_most = std::max(m_most, times.size() - m_begin);
  }
  [[nodiscard]] std::uint32_t most() const { return static_cast<std::uint32_t>(m_most); }

 private:
  std::int64_t m_seconds;
  std::size_t m_begin = 0;
  std::size_t m_most = 0;
};

/// Puts the attempts of one address or name together.
class LoginCounter {
 public:
  LoginCounter(const Activity& activity, LoginsBy by, const Thresholds& thresholds)
      : m_activity(activity), m_by(by), m_thresholds(thresholds), m_seen(activity.texts.size()) {}

  [[nodiscard]] TextId whoOf(RowNumber attempt) const {
    const LogonRow& logon = m_activity.logons[attempt];
    return m_by == LoginsBy::Address ? logon.address : logon.user;
  }

  /// attempts: all of one, in log order. They are put in order of time: several logs may tell of the same days.
  LoginRow count(std::span<RowNumber> attempts) {
    std::stable_sort(attempts.begin(), attempts.end(), [this](RowNumber a, RowNumber b) {
      return m_activity.logons[a].time < m_activity.logons[b].time;
    });
    LoginRow row;
    row.who = whoOf(attempts.front());
    row.log = m_activity.logons[attempts.front()].log;
    row.attempt = attempts.front();
    row.attempts = static_cast<std::uint32_t>(attempts.size());
    m_refusals.clear();
    m_tenMinutes.clear();
    m_twoMinutes.clear();
    ++m_round;
    std::uint32_t inARow = 0;
    for (const RowNumber attempt : attempts)
      inARow = take(row, attempt, inARow);
    row.mostInTenMinutes = m_tenMinutes.most();
    row.mostInTwoMinutes = m_twoMinutes.most();
    row.rank = rankOf(row);
    return row;
  }

 private:
  /// Returns how many refusals there were in a row then.
  std::uint32_t take(LoginRow& row, RowNumber attempt, std::uint32_t inARow) {
    const LogonRow& logon = m_activity.logons[attempt];
    if (row.first == kNoTime) row.first = logon.time;
    row.last = std::max(row.last, logon.time);
    const TextId other = m_by == LoginsBy::Address ? logon.user : logon.address;
    if (other != kNoText && m_seen[other] != m_round) {
      m_seen[other] = m_round;
      if (row.names < row.firstNames.size()) row.firstNames[row.names] = other;
      ++row.names;
    }
    if (logon.isOk()) {
      if (inARow > row.gotInAfter) {
        row.gotInAfter = inARow;
        row.gotInAs = other;
        row.gotInAt = logon.time;
        row.attempt = attempt;
      }
      return 0;
    }
    ++row.failures;
    if (logon.time != kNoTime) {
      m_refusals.push_back(logon.time);
      m_tenMinutes.take(m_refusals);
      m_twoMinutes.take(m_refusals);
    }
    return inARow + 1;
  }

  [[nodiscard]] std::uint8_t rankOf(const LoginRow& row) const {
    const auto reaches = [](std::uint32_t count, std::uint32_t threshold) {
      return threshold > 0 && count >= threshold;
    };
    if (reaches(row.gotInAfter, m_thresholds.beforeSuccess)) return 2;
    return reaches(row.mostInTenMinutes, m_thresholds.inTenMinutes) ||
                   reaches(row.mostInTwoMinutes, m_thresholds.inTwoMinutes)
               ? 1
               : 0;
  }

  const Activity& m_activity;
  LoginsBy m_by;
  Thresholds m_thresholds;
  std::vector<LogTime> m_refusals;
  Window m_tenMinutes{10 * kMinute};
  Window m_twoMinutes{2 * kMinute};
  std::vector<std::uint32_t> m_seen;  ///< by TextId: the round in which it was tried last
  std::uint32_t m_round = 0;
};

/// The first names, and how many more there were.
Cell namesTried(const CellMaker& make, const LoginRow& row) {
  std::string names;
  for (const TextId name : row.firstNames) {
    if (name == kNoText) break;
    if (!names.empty()) names += ", ";
    names += make.text(name, row.log).text;
  }
  if (row.names > row.firstNames.size()) names += ", +" + std::to_string(row.names - row.firstNames.size());
  return make.keptText(names);
}

constexpr std::string_view rankName(std::uint8_t rank) {
  constexpr std::array<std::string_view, 3> kNames = {"", "guessing", "got in"};
  return kNames[rank];
}

constexpr bool kExtra = true;

constexpr auto fields(LoginsBy by) {
  const bool isByAddress = by == LoginsBy::Address;
  return std::to_array<Field<LoginRow>>({
      textField<LoginRow, &LoginRow::who>(isByAddress ? "address" : "user", isByAddress ? "Address" : "User"),
      {{"stands_out", "Stands out", CellKind::Name},
       [](const CellMaker&, const LoginRow& row) { return CellMaker::name(rankName(row.rank), row.rank); }},
      countField<LoginRow, &LoginRow::failures>("failures", "Refused"),
      countField<LoginRow, &LoginRow::names>(isByAddress ? "names" : "addresses", isByAddress ? "Names" : "Addresses",
                                             kExtra),
      {{isByAddress ? "names_tried" : "addresses_tried", isByAddress ? "Names tried" : "From", CellKind::Text},
       namesTried},
      countField<LoginRow, &LoginRow::mostInTenMinutes>("most_in_10m", "Most in 10 min"),
      countField<LoginRow, &LoginRow::mostInTwoMinutes>("most_in_2m", "Most in 2 min", kExtra),
      countField<LoginRow, &LoginRow::gotInAfter>("got_in_after", "Got in after"),
      textField<LoginRow, &LoginRow::gotInAs>(isByAddress ? "got_in_as" : "got_in_from",
                                              isByAddress ? "Got in as" : "Got in from"),
      timeField<LoginRow, &LoginRow::gotInAt>("got_in_at", "Got in at", kExtra),
      countField<LoginRow, &LoginRow::attempts>("attempts", "Attempts"),
      timeField<LoginRow, &LoginRow::first>("first", "First"),
      timeField<LoginRow, &LoginRow::last>("last", "Last"),
  });
}
constexpr auto kByAddress = fields(LoginsBy::Address);
constexpr auto kByUser = fields(LoginsBy::User);

}  // namespace

std::vector<LoginRow> logins(const Activity& activity, const std::vector<RowNumber>& logons, LoginsBy by,
                             const Thresholds& thresholds) {
  LoginCounter counter(activity, by, thresholds);
  std::vector<RowNumber> attempts = logons;
  std::stable_sort(attempts.begin(), attempts.end(),
                   [&counter](RowNumber a, RowNumber b) { return counter.whoOf(a) < counter.whoOf(b); });
  std::vector<LoginRow> rows;
  for (auto begin = attempts.begin(); begin != attempts.end();) {
    const auto end = std::find_if(begin, attempts.end(), [&counter, who = counter.whoOf(*begin)](RowNumber attempt) {
      return counter.whoOf(attempt) != who;
    });
    rows.push_back(counter.count({begin, end}));
    begin = end;
  }
  std::stable_sort(rows.begin(), rows.end(), [](const LoginRow& a, const LoginRow& b) {
    return std::tie(b.rank, b.failures, b.mostInTenMinutes, a.first) <
           std::tie(a.rank, a.failures, a.mostInTenMinutes, b.first);
  });
  return rows;
}

std::unique_ptr<Table> loginsTable(const Activity& activity, const std::vector<RowNumber>& logons, LoginsBy by,
                                   const Thresholds& thresholds) {
  const auto source = [](const LoginRow& row, RowNumber) { return RowSource{RowSource::Kind::Logon, row.attempt}; };
  return std::make_unique<FieldTable<LoginRow>>("logins", activity, by == LoginsBy::Address ? kByAddress : kByUser,
                                                source, logins(activity, logons, by, thresholds));
}

}  // namespace quorvel
