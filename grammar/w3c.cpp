#include "grammar/w3c.h"

#include <utility>

#include "grammar/civil_time.h"

namespace quorvel {
namespace {

constexpr std::array<std::pair<std::string_view, W3cField>, 13> kFields = {{
    {"date", W3cField::Date},
    {"time", W3cField::Time},
    {"c-ip", W3cField::Address},
    {"cs-username", W3cField::User},
    {"cs-method", W3cField::Method},
    {"cs-uri-stem", W3cField::Path},
    {"x-fullpath", W3cField::FullPath},
    {"sc-status", W3cField::Status},
    {"sc-win32-status", W3cField::Win32Status},
    {"sc-bytes", W3cField::SentBytes},
    {"cs-bytes", W3cField::ReceivedBytes},
    {"time-taken", W3cField::TimeTaken},
    {"x-session", W3cField::Session},
}};
constexpr std::size_t kMostFields = 64;

W3cField fieldOf(std::string_view name) {
  for (const auto& [known, field] : kFields)
    if (known == name) return field;
  return W3cField::Other;
}

}  // namespace

void takeW3cDirective(std::string_view line, Dialect& dialect) {
  LineFront front(line);
  if (front.take("#Date: ")) dialect.date = std::string(front.takeWord());
  if (!front.take("#Fields:")) return;
  dialect.fields.clear();
  while (!front.isEmpty() && dialect.fields.size() < kMostFields) {
    const std::string_view name = front.takeWord();
    if (!name.empty()) dialect.fields.push_back(static_cast<int>(fieldOf(name)));
  }
}

W3cLine::W3cLine(std::string_view line, const Dialect& dialect) {
  LineFront front(line);
  for (const int field : dialect.fields) {
    if (front.isEmpty()) return;
    const std::string_view value = front.takeWord();
    if (value != "-") m_values[static_cast<std::size_t>(field)] = value;
  }
  if (!front.isEmpty()) return;
  const std::string_view date = (*this)[W3cField::Date];
  LineFront day(date.empty() ? std::string_view(dialect.date) : date);
  LineFront clock((*this)[W3cField::Time]);
  const auto midnight = takeIsoDay(day);
  const auto seconds = takeClock(clock);
  if (midnight && seconds && day.isEmpty() && clock.isEmpty()) m_time = *midnight + static_cast<LogTime>(*seconds);
}

}  // namespace quorvel
