#include "report/scope.h"

#include <array>
#include <charconv>
#include <chrono>

#include "log/text.h"

namespace quorvel {
namespace {

struct Key {
  std::string_view name;
  ScopeWord::Field field;
};
constexpr auto kKeys = std::to_array<Key>({
    {"user", ScopeWord::Field::User},
    {"ip", ScopeWord::Field::Address},
    {"address", ScopeWord::Field::Address},
    {"path", ScopeWord::Field::Path},
    {"outcome", ScopeWord::Field::Outcome},
});

/// Takes words apart, from left to right.
class WordParser {
 public:
  explicit WordParser(std::string_view text) : m_text(text) {}

  std::optional<ScopeMistake> parse(std::vector<ScopeWord>& words) {
    std::vector<ScopeWord> taken;
    for (skipBlanks(); m_at < m_text.size(); skipBlanks()) {
      if (auto mistake = takeWord(taken)) return mistake;
    }
    words.insert(words.end(), taken.begin(), taken.end());
    return std::nullopt;
  }

 private:
  std::optional<ScopeMistake> takeWord(std::vector<ScopeWord>& words) {
    const std::size_t begin = m_at;
    ScopeWord word;
    word.isExcluded = m_text[m_at] == '-';
    if (word.isExcluded) ++m_at;
    const std::size_t keyBegin = m_at;
    while (m_at < m_text.size() && m_text[m_at] >= 'a' && m_text[m_at] <= 'z')
      ++m_at;
    if (m_at < m_text.size() && m_text[m_at] == ':' && m_at > keyBegin) {
      const std::string_view name = m_text.substr(keyBegin, m_at - keyBegin);
      for (const Key& key : kKeys) {
        if (key.name == name) word.field = key.field;
      }
      if (word.field == ScopeWord::Field::Any) {
        return ScopeMistake{"\"" + std::string(name) + ":\" is not known; there are user:, ip:, path: and outcome:.",
                            keyBegin, m_at + 1};
      }
      ++m_at;
    } else {
      m_at = keyBegin;
    }
    if (!takeText(word.text)) return ScopeMistake{"The closing quotation mark is missing.", begin, m_text.size()};
    if (word.text.empty()) return ScopeMistake{"A text to look for is missing here.", begin, m_at};
    words.push_back(std::move(word));
    return std::nullopt;
  }

  /// To the next blank, or what stands between quotation marks, of which two stand for one. False: never closed.
  bool takeText(std::string& text) {
    if (m_at >= m_text.size() || m_text[m_at] != '"') {
      const std::size_t end = std::min(m_text.find_first_of(" \t", m_at), m_text.size());
      text = m_text.substr(m_at, end - m_at);
      m_at = end;
      return true;
    }
    for (++m_at; m_at < m_text.size(); text += m_text[m_at++]) {
      if (m_text[m_at] != '"') continue;
      if (++m_at >= m_text.size() || m_text[m_at] != '"') return true;
    }
    return false;
  }

  void skipBlanks() { m_at = std::min(m_text.find_first_not_of(" \t", m_at), m_text.size()); }

  std::string_view m_text;
  std::size_t m_at = 0;
};

std::string_view keyOf(ScopeWord::Field field) {
  for (const Key& key : kKeys) {
    if (key.field == field) return key.name;
  }
  return {};
}

/// Digits only, all of text.
std::optional<unsigned> numberOf(std::string_view text) {
  unsigned number = 0;
  const char* const end = text.data() + text.size();
  if (text.empty() || text.front() < '0' || text.front() > '9') return std::nullopt;
  const auto parsed = std::from_chars(text.data(), end, number);
  return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(number) : std::nullopt;
}

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;

std::optional<LogTime> inRange(std::int64_t time) {
  if (time <= 0 || time > UINT32_MAX) return std::nullopt;
  return static_cast<LogTime>(time);
}

/// `-7d`: so long ago.
std::optional<LogTime> parseAge(std::string_view text, LogTime now) {
  constexpr std::array<std::pair<char, std::int64_t>, 4> kUnits = {
      {{'m', kMinute}, {'h', kHour}, {'d', kDay}, {'w', 7 * kDay}}};
  const auto number = numberOf(text.substr(1, text.size() - 2));
  if (!number) return std::nullopt;
  for (const auto& [unit, seconds] : kUnits) {
    if (text.back() == unit) return inRange(std::int64_t{now} - std::int64_t{*number} * seconds);
  }
  return std::nullopt;
}

/// `2005-06-06`, in seconds.
std::optional<std::int64_t> parseDay(std::string_view text) {
  using namespace std::chrono;
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  const auto year = numberOf(text.substr(0, 4));
  const auto month = numberOf(text.substr(5, 2));
  const auto day = numberOf(text.substr(8, 2));
  if (!year || !month || !day) return std::nullopt;
  const year_month_day date(std::chrono::year(static_cast<int>(*year)), std::chrono::month(*month),
                            std::chrono::day(*day));
  if (!date.ok()) return std::nullopt;
  return sys_days(date).time_since_epoch().count() * kDay;
}

/// `08:00` or `08:00:00`, in seconds.
std::optional<std::int64_t> parseClock(std::string_view text) {
  if ((text.size() != 5 && text.size() != 8) || text[2] != ':' || (text.size() == 8 && text[5] != ':'))
    return std::nullopt;
  const auto hour = numberOf(text.substr(0, 2));
  const auto minute = numberOf(text.substr(3, 2));
  const auto second = text.size() == 8 ? numberOf(text.substr(6, 2)) : 0;
  if (!hour || !minute || !second || *hour > 23 || *minute > 59 || *second > 59) return std::nullopt;
  return *hour * kHour + *minute * kMinute + *second;
}

}  // namespace

std::optional<ScopeMistake> parseWords(std::string_view text, std::vector<ScopeWord>& words) {
  return WordParser(text).parse(words);
}

std::string wordsText(const std::vector<ScopeWord>& words) {
  std::string text;
  for (const ScopeWord& word : words) {
    if (!text.empty()) text += ' ';
    if (word.isExcluded) text += '-';
    if (word.field != ScopeWord::Field::Any) text.append(keyOf(word.field)).append(":");
    const bool isPlain = word.text.find_first_of(" \t\":") == std::string::npos && !word.text.starts_with('-');
    if (isPlain) {
      text += word.text;
      continue;
    }
    text += '"';
    for (const char c : word.text)
      text.append(c == '"' ? 2 : 1, c);
    text += '"';
  }
  return text;
}

std::optional<LogTime> parseWhen(std::string_view text, LogTime now, bool isEnd) {
  const std::int64_t wholeDay = isEnd ? kDay : 0;
  const std::int64_t today = now / kDay * kDay;
  if (text == "now") return now;
  if (text == "today") return inRange(today + wholeDay);
  if (text == "yesterday") return inRange(today - kDay + wholeDay);
  if (text.size() > 2 && text.front() == '-') return parseAge(text, now);
  const auto day = parseDay(text.substr(0, 10));
  if (!day) return std::nullopt;
  if (text.size() == 10) return inRange(*day + wholeDay);
  const auto clock = text[10] == 'T' || text[10] == ' ' ? parseClock(text.substr(11)) : std::nullopt;
  return clock ? inRange(*day + *clock) : std::nullopt;
}

}  // namespace quorvel
