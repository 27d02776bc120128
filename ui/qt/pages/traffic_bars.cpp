#include "ui/qt/pages/traffic_bars.h"

#include <algorithm>
#include <map>
#include <utility>

#include "ui/qt/pages/shown_text.h"

namespace quorvel {
namespace {

constexpr LogTime kDay = 24 * 60 * 60;
constexpr std::size_t kMostBars = 24;    // that are no times
constexpr std::size_t kMostDays = 2000;  // with those in between that have no traffic
constexpr std::size_t kMostParts = 6;

bool isTime(TrafficKey key) {
  return key == TrafficKey::Day || key == TrafficKey::Month;
}

std::int64_t numberOf(const Table& table, std::size_t row, std::string_view column) {
  for (std::size_t i = 0; i < table.columns().size(); ++i) {
    if (table.columns()[i].name != column) continue;
    const Cell cell = table.cell(row, i);
    return cell.kind == CellKind::Null ? 0 : std::max<std::int64_t>(0, cell.number);
  }
  return 0;
}

QString keyText(const Table& table, std::size_t row, std::size_t key) {
  const QString text = shownText(table.cell(row, key));
  return text.isEmpty() ? QStringLiteral("(none)") : text;
}

/// The period a key stands for: "2005-06-06", "2005-06".
void setPeriod(Bar& bar, TrafficKey key, std::string text) {
  constexpr std::size_t kDayLength = 10;
  constexpr LogTime kLongestMonth = 31 * kDay;
  const bool isMonth = key == TrafficKey::Month;
  if (isMonth) text += "-01";
  if (text.size() != kDayLength) return;
  const auto from = parseWhen(text, kNoTime, false);
  if (!from) return;
  bar.from = *from;
  bar.to = *from + kDay;
  if (!isMonth) return;
  const QString next = shownTime(*from + kLongestMonth).left(8) + QStringLiteral("01");
  bar.to = parseWhen(next.toStdString(), kNoTime, false).value_or(bar.to);
}

std::optional<ScopeWord> wordOf(TrafficKey key, const Cell& cell) {
  using Field = ScopeWord::Field;
  if (cell.text.empty()) return std::nullopt;
  if (key == TrafficKey::User) return ScopeWord{Field::User, std::string(cell.text), false};
  if (key == TrafficKey::Address) return ScopeWord{Field::Address, std::string(cell.text), false};
  if (key == TrafficKey::Folder) return ScopeWord{Field::Path, std::string(cell.text), false};
  return std::nullopt;
}

Bar makeBar(const Table& table, std::size_t row, TrafficKey key) {
  Bar bar;
  bar.label = keyText(table, row, 0);
  const Cell cell = table.cell(row, 0);
  if (isTime(key)) setPeriod(bar, key, std::string(cell.text));
  bar.word = wordOf(key, cell);
  return bar;
}

/// The values of the second key that get a part of their own, with the parts' numbers.
std::map<QString, std::size_t> biggestParts(const Table& table, std::size_t rows) {
  std::map<QString, std::int64_t> sums;
  for (std::size_t row = 0; row < rows; ++row)
    sums[keyText(table, row, 1)] += numberOf(table, row, "bytes");
  std::vector<std::pair<std::int64_t, QString>> order;
  for (const auto& [name, bytes] : sums)
    order.emplace_back(-bytes, name);
  std::sort(order.begin(), order.end());
  std::map<QString, std::size_t> parts;
  for (std::size_t i = 0; i < std::min(kMostParts, order.size()); ++i)
    parts[order[i].second] = i;
  return parts;
}

void fillDays(std::vector<Bar>& bars, std::size_t parts) {
  std::vector<Bar> filled;
  for (Bar& bar : bars) {
    while (!filled.empty() && filled.back().to != kNoTime && filled.back().to < bar.from && filled.size() < kMostDays) {
      Bar empty;
      empty.from = filled.back().to;
      empty.to = empty.from + kDay;
      empty.label = shownTime(empty.from).left(10);
      empty.parts.assign(parts, 0);
      filled.push_back(std::move(empty));
    }
    filled.push_back(std::move(bar));
  }
  bars = std::move(filled);
}

}  // namespace

Bars trafficBars(const Table& traffic, std::span<const TrafficKey> by) {
  const std::size_t rows = traffic.rowCount() - std::min(traffic.totalRows(), traffic.rowCount());
  const bool hasTwo = by.size() > 1;
  Bars bars;
  bars.title = QStringLiteral("Bytes by ") +
               shownText(Cell{CellKind::Name, 0, kTrafficKeyNames[static_cast<std::size_t>(by[0])]});
  std::map<QString, std::size_t> parts;
  if (hasTwo) parts = biggestParts(traffic, rows);
  const std::size_t partCount = hasTwo ? parts.size() + 1 : 2;
  bars.partNames = {QStringLiteral("Downloaded"), QStringLiteral("Uploaded")};
  if (hasTwo) {
    bars.partNames.fill({}, static_cast<qsizetype>(parts.size()));
    for (const auto& [name, part] : parts)
      bars.partNames[static_cast<qsizetype>(part)] = name;
    bars.partNames += QStringLiteral("others");
  }
  for (std::size_t row = 0; row < rows; ++row) {
    Bar bar = makeBar(traffic, row, by[0]);
    if (bars.bars.empty() || bars.bars.back().label != bar.label) {
      const bool isFull = !isTime(by[0]) && bars.bars.size() == kMostBars;
      if (isFull) {
        bars.title += QStringLiteral(", the first %1").arg(kMostBars);
        break;
      }
      bar.parts.assign(partCount, 0);
      bars.bars.push_back(std::move(bar));
    }
    std::vector<std::int64_t>& values = bars.bars.back().parts;
    if (hasTwo) {
      const auto part = parts.find(keyText(traffic, row, 1));
      values[part == parts.end() ? partCount - 1 : part->second] += numberOf(traffic, row, "bytes");
    } else {
      values[0] += numberOf(traffic, row, "download_bytes");
      values[1] += numberOf(traffic, row, "upload_bytes");
    }
  }
  if (by[0] == TrafficKey::Day) fillDays(bars.bars, partCount);
  return bars;
}

}  // namespace quorvel
