#include "report/alerts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <tuple>

#include "report/cell_text.h"
#include "report/check.h"
#include "report/field_table.h"

namespace quorvel {
namespace {

using What = AlertRule::What;
using By = AlertRule::By;

struct WhatName {
  std::string_view name;
  What what;
};
constexpr auto kWhats = std::to_array<WhatName>({
    {"success after failures", What::SuccessAfterFailures},
    {"failures", What::Failures},
    {"sessions", What::Sessions},
    {"downloads", What::Downloads},
    {"uploads", What::Uploads},
    {"broken", What::Broken},
    {"deletes", What::Deletes},
    {"renames", What::Renames},
    {"bytes", What::Bytes},
    {"set_aside", What::SetAside},
});

/// Takes a rule apart from left to right; each step says whether it found what it looks for.
class RuleParser {
 public:
  explicit RuleParser(std::string_view text) : m_rest(text) { m_rule.text = text; }

  std::optional<AlertRule> parse(std::string& mistake) {
    if (!takeWhat()) {
      mistake =
          "it begins with none of failures, success after failures, sessions, downloads, uploads, broken, deletes, "
          "renames, bytes, set_aside";
    } else if (!takeComparison() || !takeLimit()) {
      mistake = "\"" + std::string(kWhats[m_what].name) + "\" is followed by >= or > and a number";
    } else if (takeWord("in") && !takePeriod()) {
      mistake = "\"in\" is followed by a time such as 30s, 10m, 2h or 1d";
    } else if (takeWord("by") && !takeBy()) {
      mistake = "\"by\" is followed by address or user";
    } else if (!m_rest.empty()) {
      mistake = "\"" + std::string(m_rest) + "\" does not belong there";
    } else if (auto wrong = contradiction()) {
      mistake = *wrong;
    } else {
      if (m_rule.what == What::SuccessAfterFailures && m_rule.by == By::All) m_rule.by = By::Address;
      return m_rule;
    }
    return std::nullopt;
  }

 private:
  bool takeWhat() {
    for (m_what = 0; m_what < kWhats.size(); ++m_what) {
      m_rule.what = kWhats[m_what].what;
      if (take(kWhats[m_what].name)) return true;
    }
    return false;
  }

  bool takeComparison() {
    if (take(">=")) return true;
    m_rule.isMoreThan = take(">");
    return m_rule.isMoreThan;
  }

  bool takeLimit() {
    if (m_rule.what == What::SetAside) return takePercent();
    const auto number = takeNumber();
    if (!number) return false;
    constexpr std::string_view kUnits = "KMGT";
    std::int64_t factor = 1;
    if (!m_rest.empty() && m_rule.what == What::Bytes) {
      const auto unit = kUnits.find(m_rest.front());
      for (std::size_t i = 0; unit != std::string_view::npos && i <= unit; ++i)
        factor *= 1000;
      if (factor > 1) m_rest.remove_prefix(1);
    }
    skipBlanks();
    if (*number > INT64_MAX / factor) return false;
    m_rule.limit = *number * factor;
    return true;
  }

  /// `1%` or `0.25%`.
  bool takePercent() {
    const auto whole = takeNumber();
    if (!whole || *whole > 100) return false;
    m_rule.limit = *whole * 100;
    if (take(".")) {
      const std::size_t digits = m_rest.size();
      const auto part = takeNumber();
      const std::size_t length = digits - m_rest.size();
      if (!part || length > 2) return false;
      m_rule.limit += length == 1 ? *part * 10 : *part;
    }
    return take("%");
  }

  bool takePeriod() {
    constexpr std::array<std::pair<std::string_view, std::int64_t>, 5> kUnits = {
        {{"s", 1}, {"m", 60}, {"h", 3600}, {"d", 86400}, {"w", 604800}}};
    const auto number = takeNumber();
    if (!number || *number == 0 || *number > 1'000'000) return false;
    for (const auto& [unit, seconds] : kUnits) {
      if (!take(unit)) continue;
      m_rule.seconds = *number * seconds;
      return true;
    }
    return false;
  }

  bool takeBy() {
    if (takeWord("address")) {
      m_rule.by = By::Address;
    } else if (takeWord("user")) {
      m_rule.by = By::User;
    }
    return m_rule.by != By::All;
  }

  [[nodiscard]] std::optional<std::string> contradiction() const {
    const bool isSetAside = m_rule.what == What::SetAside;
    if (isSetAside && (m_rule.seconds > 0 || m_rule.by != By::All)) return "set_aside is a share of a whole log";
    if (m_rule.what == What::SuccessAfterFailures && m_rule.seconds > 0) return "success after failures takes no time";
    if (m_rule.limit == 0 && !m_rule.isMoreThan) return "it would always hold";
    return std::nullopt;
  }

  bool take(std::string_view text) {
    if (!m_rest.starts_with(text)) return false;
    m_rest.remove_prefix(text.size());
    skipBlanks();
    return true;
  }
  bool takeWord(std::string_view word) {
    const bool isWhole = m_rest.size() == word.size() || (m_rest.size() > word.size() && m_rest[word.size()] == ' ');
    return isWhole && take(word);
  }
  /// Without the blanks behind it: a unit may follow.
  std::optional<std::int64_t> takeNumber() {
    std::int64_t number = 0;
    if (m_rest.empty() || m_rest.front() < '0' || m_rest.front() > '9') return std::nullopt;
    const auto [end, error] = std::from_chars(m_rest.data(), m_rest.data() + m_rest.size(), number);
    if (error != std::errc()) return std::nullopt;
    m_rest.remove_prefix(static_cast<std::size_t>(end - m_rest.data()));
    return number;
  }
  void skipBlanks() { m_rest.remove_prefix(std::min(m_rest.find_first_not_of(' '), m_rest.size())); }

  std::string_view m_rest;
  AlertRule m_rule;
  std::size_t m_what = 0;
};

/// Something that a rule counts.
struct Counted {
  TextId who;
  LogTime time;
  std::int64_t value;
  RowNumber row;
};

class Watch {
 public:
  Watch(const Activity& activity, const Selection& selection, const AlertRule& rule, std::uint16_t number)
      : m_activity(activity), m_selection(selection), m_rule(rule), m_number(number) {}

  void find(std::vector<Alert>& alerts) {
    m_alerts = &alerts;
    if (m_rule.what == What::SetAside) return findSetAside();
    std::vector<Counted> counted = count();
    std::stable_sort(counted.begin(), counted.end(), [](const Counted& a, const Counted& b) {
      return std::tie(a.who, a.time) < std::tie(b.who, b.time);
    });
    for (auto begin = counted.begin(); begin != counted.end();) {
      const auto end =
          std::find_if(begin, counted.end(), [who = begin->who](const Counted& other) { return other.who != who; });
      if (m_rule.what == What::SuccessAfterFailures) {
        findSuccesses({begin, end});
      } else {
        findWindows({begin, end});
      }
      begin = end;
    }
  }

 private:
  [[nodiscard]] std::vector<Counted> count() const {
    std::vector<Counted> counted;
    const auto add = [&](const auto& row, LogTime time, std::int64_t value, RowNumber number) {
      if (m_rule.seconds > 0 && time == kNoTime) return;
      const TextId who = m_rule.by == By::All ? kNoText : m_rule.by == By::Address ? row.address : row.user;
      counted.push_back({who, time, value, number});
    };
    switch (kind()) {
      case RowSource::Kind::Session:
        for (const RowNumber number : m_selection.sessions) {
          const SessionRow& row = m_activity.sessions[number];
          add(row, row.first, 1, number);
        }
        break;
      case RowSource::Kind::Logon:
        for (const RowNumber number : m_selection.logons) {
          const LogonRow& row = m_activity.logons[number];
          const bool isCounted = m_rule.what == What::SuccessAfterFailures || !row.isOk();
          if (isCounted) add(row, row.time, 1, number);
        }
        break;
      default:
        for (const RowNumber number : m_selection.actions) {
          const ActionRow& row = m_activity.actions[number];
          if (counts(row))
            add(row, row.time, m_rule.what == What::Bytes ? std::max<std::int64_t>(row.bytes, 0) : 1, number);
        }
    }
    return counted;
  }

  [[nodiscard]] RowSource::Kind kind() const {
    if (m_rule.what == What::Sessions) return RowSource::Kind::Session;
    const bool isLogon = m_rule.what == What::Failures || m_rule.what == What::SuccessAfterFailures;
    return isLogon ? RowSource::Kind::Logon : RowSource::Kind::Action;
  }

  [[nodiscard]] bool counts(const ActionRow& row) const {
    const bool isOk = row.outcome == Outcome::Ok;
    switch (m_rule.what) {
      case What::Broken:
        return row.isTransfer() && row.outcome == Outcome::Failed;
      case What::Bytes:
        return row.isTransfer() && isOk;
      case What::Downloads:
        return isOk && row.action == FileAction::Download;
      case What::Uploads:
        return isOk && row.action == FileAction::Upload;
      case What::Deletes:
        return isOk && row.action == FileAction::Delete;
      default:
        return isOk && row.action == FileAction::Rename;
    }
  }

  /// counted is of one, in the order of time. An alert lasts as long as the rule holds behind every row.
  void findWindows(std::span<const Counted> counted) {
    std::int64_t sum = 0;
    std::size_t begin = 0;
    bool holds = false;
    for (std::size_t end = 0; end < counted.size(); ++end) {
      sum += counted[end].value;
      while (m_rule.seconds > 0 && std::int64_t{counted[end].time} - counted[begin].time >= m_rule.seconds) {
        sum -= counted[begin++].value;
      }
      const bool held = std::exchange(holds, m_rule.isReached(sum));
      if (holds && !held) add(counted[end], counted[begin].time);
      if (!holds) continue;
      Alert& alert = m_alerts->back();
      alert.value = std::max(alert.value, sum);
      alert.last = std::max(alert.last, counted[end].time);
    }
  }

  void findSuccesses(std::span<const Counted> counted) {
    std::int64_t inARow = 0;
    LogTime first = kNoTime;
    for (const Counted& attempt : counted) {
      if (!m_activity.logons[attempt.row].isOk()) {
        if (inARow++ == 0) first = attempt.time;
        continue;
      }
      if (m_rule.isReached(inARow)) {
        add(attempt, first);
        m_alerts->back().value = inARow;
      }
      inARow = 0;
    }
  }

  void findSetAside() {
    for (std::size_t log = 0; log < m_activity.logs.size(); ++log) {
      const Ledger& ledger = m_activity.logs[log].ledger;
      const std::int64_t share = setAsidePercent(ledger);
      if (!m_rule.isReached(share)) continue;
      m_alerts->push_back({m_number, static_cast<LogNumber>(log), kNoText, share, ledger.first, ledger.last, {}});
    }
  }

  void add(const Counted& counted, LogTime first) {
    const RowSource source{kind(), counted.row};
    m_alerts->push_back({m_number, logOf(source), counted.who, 0, first, counted.time, source});
  }

  [[nodiscard]] LogNumber logOf(const RowSource& source) const {
    switch (source.kind) {
      case RowSource::Kind::Session:
        return m_activity.sessions[source.row].log;
      case RowSource::Kind::Logon:
        return m_activity.logons[source.row].log;
      default:
        return m_activity.actions[source.row].log;
    }
  }

  const Activity& m_activity;
  const Selection& m_selection;
  const AlertRule& m_rule;
  std::uint16_t m_number;
  std::vector<Alert>* m_alerts = nullptr;
};

/// An alert and what its cells need of its rule.
struct AlertRow : Alert {
  std::string ruleText;
  bool isPercent;
};

constexpr auto kFields = std::to_array<Field<AlertRow>>({
    {{"rule", "Rule", CellKind::Text},
     [](const CellMaker& make, const AlertRow& row) { return make.keptText(row.ruleText); }},
    textField<AlertRow, &AlertRow::who>("who", "Who"),
    logField<AlertRow>(),
    {{"value", "Value", CellKind::Count},
     [](const CellMaker&, const AlertRow& row) {
       return row.isPercent ? Cell{} : CellMaker::count(static_cast<std::uint64_t>(row.value));
     }},
    {{"percent", "Percent", CellKind::Percent, true},
     [](const CellMaker&, const AlertRow& row) { return row.isPercent ? CellMaker::percent(row.value) : Cell{}; }},
    timeField<AlertRow, &AlertRow::first>("first", "First"),
    timeField<AlertRow, &AlertRow::last>("last", "Last"),
});

}  // namespace

std::optional<AlertRule> parseAlertRule(std::string_view text, std::string& mistake) {
  return RuleParser(text).parse(mistake);
}

std::vector<Alert> findAlerts(const Activity& activity, const Selection& selection, std::span<const AlertRule> rules) {
  std::vector<Alert> alerts;
  for (std::size_t rule = 0; rule < rules.size(); ++rule)
    Watch(activity, selection, rules[rule], static_cast<std::uint16_t>(rule)).find(alerts);
  return alerts;
}

std::unique_ptr<Table> alertsTable(const Activity& activity, std::span<const AlertRule> rules,
                                   std::vector<Alert> alerts) {
  std::vector<AlertRow> rows;
  for (const Alert& alert : alerts)
    rows.push_back({alert, rules[alert.rule].text, rules[alert.rule].what == What::SetAside});
  const auto source = [](const AlertRow& row, RowNumber) { return row.source; };
  return std::make_unique<FieldTable<AlertRow>>("alerts", activity, kFields, source, std::move(rows));
}

}  // namespace quorvel
