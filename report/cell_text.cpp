#include "report/cell_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>

#include "log/text.h"

namespace quorvel {
namespace {

/// A number with at least `width` digits.
void appendNumber(std::string& text, std::int64_t number, int width = 1) {
  std::array<char, 24> digits{};
  const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  for (auto length = end - digits.data(); length < width; ++length)
    text += '0';
  text.append(digits.data(), static_cast<std::size_t>(end - digits.data()));
}

void appendDay(std::string& text, LogTime time) {
  using namespace std::chrono;
  const year_month_day day(sys_days(floor<days>(sys_seconds(seconds(time)))));
  appendNumber(text, static_cast<int>(day.year()), 4);
  text += '-';
  appendNumber(text, static_cast<unsigned>(day.month()), 2);
  text += '-';
  appendNumber(text, static_cast<unsigned>(day.day()), 2);
}

void appendClock(std::string& text, std::int64_t seconds, int hourDigits) {
  appendNumber(text, seconds / 3600, hourDigits);
  text += ':';
  appendNumber(text, seconds / 60 % 60, 2);
  text += ':';
  appendNumber(text, seconds % 60, 2);
}

void appendTime(std::string& text, LogTime time, char between) {
  if (time == kNoTime) return;
  appendDay(text, time);
  text += between;
  appendClock(text, time % 86400, 2);
}

void appendPercent(std::string& text, std::int64_t hundredths) {
  appendNumber(text, hundredths / 100);
  text += '.';
  appendNumber(text, hundredths % 100, 2);
}

/// Bytes of the character that a text begins with when it must not be shown; 0: it may be.
std::size_t controlLength(std::string_view text) {
  const auto byte = [text](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u; };
  if (byte(0) < 0x20 || byte(0) == 0x7F) return 1;
  if (byte(0) == 0xC2 && byte(1) >= 0x80 && byte(1) < 0xA0) return 2;
  if (byte(0) != 0xE2) return 0;
  const unsigned last = byte(2);
  const bool isMark = byte(1) == 0x80 && (last == 0x8E || last == 0x8F || (last >= 0xA8 && last <= 0xAE));
  const bool isIsolate = byte(1) == 0x81 && last >= 0xA6 && last <= 0xA9;
  return isMark || isIsolate ? 3 : 0;
}

}  // namespace

std::string timeText(LogTime time) {
  std::string text;
  appendTime(text, time, 'T');
  return text;
}

std::string dayText(LogTime time) {
  std::string text;
  if (time != kNoTime) appendDay(text, time);
  return text;
}

void appendPlain(std::string& text, const Cell& cell) {
  switch (cell.kind) {
    case CellKind::Null:
      return;
    case CellKind::Text:
    case CellKind::Name:
      text.append(cell.text);
      return;
    case CellKind::Count:
    case CellKind::Bytes:
    case CellKind::Seconds:
      return appendNumber(text, cell.number);
    case CellKind::Percent:
      return appendPercent(text, cell.number);
    case CellKind::Time:
      return appendTime(text, static_cast<LogTime>(cell.number), 'T');
    case CellKind::Flag:
      text.append(cell.number != 0 ? "true" : "false");
      return;
  }
}

std::string readableBytes(std::int64_t bytes) {
  constexpr std::array<std::string_view, 6> kUnits = {" kB", " MB", " GB", " TB", " PB", " EB"};
  if (bytes < 1000) return std::to_string(bytes) + " B";
  std::size_t unit = 0;
  std::int64_t size = bytes;
  for (; size >= 999'950; ++unit)
    size /= 1000;
  const std::int64_t tenths = (size + 50) / 100;
  return readableCount(tenths / 10) + "." + std::to_string(tenths % 10) + std::string(kUnits[unit]);
}

std::string readableCount(std::int64_t count) {
  std::string text = std::to_string(count);
  const std::size_t first = count < 0 ? 1 : 0;
  for (std::size_t at = text.size(); at > first + 3;)
    text.insert(at -= 3, 1, ',');
  return text;
}

std::string countOf(std::uint64_t count, std::string_view thing) {
  return readableCount(static_cast<std::int64_t>(count)).append(" ").append(thing).append(count == 1 ? "" : "s");
}

std::string readableSeconds(std::int64_t seconds) {
  constexpr std::int64_t kDay = 86400;
  std::string text = seconds >= kDay ? std::to_string(seconds / kDay) + " d " : "";
  appendClock(text, seconds % kDay, seconds >= kDay ? 2 : 1);
  return text;
}

std::string readableText(const Cell& cell) {
  switch (cell.kind) {
    case CellKind::Count:
      return readableCount(cell.number);
    case CellKind::Bytes:
      return readableBytes(cell.number);
    case CellKind::Seconds:
      return readableSeconds(cell.number);
    case CellKind::Flag:
      return cell.number != 0 ? "yes" : "";
    default:
      break;
  }
  std::string text;
  appendPlain(text, cell);
  if (cell.kind == CellKind::Percent) text += " %";
  if (cell.kind == CellKind::Time && !text.empty()) text[text.find('T')] = ' ';
  return text;
}

std::int64_t percentOf(std::uint64_t part, std::uint64_t whole) {
  constexpr std::int64_t kAll = 10'000;
  if (part >= whole) return kAll;
  const auto share = static_cast<std::int64_t>(static_cast<double>(part) / static_cast<double>(whole) * kAll + 0.5);
  return std::min(share, kAll - 1);
}

std::string withoutControls(std::string_view text) {
  std::string clean;
  clean.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = controlLength(text);
    clean.append(length > 0 ? std::string_view("\xEF\xBF\xBD") : text.substr(0, 1));
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return clean;
}

}  // namespace quorvel
