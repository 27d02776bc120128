#include "grammar/clf.h"

#include "grammar/civil_time.h"

namespace quorvel {
namespace {

/// `22/Nov/2026:03:14:26 +0000`
LogTime readDate(std::string_view text) {
  if (text.size() < 20 || text[2] != '/' || text[6] != '/' || text[11] != ':') return kNoTime;
  const auto day = wholeNumber(text.substr(0, 2));
  const auto year = wholeNumber(text.substr(7, 4));
  LineFront rest(text.substr(12));
  const auto clock = takeClock(rest);
  if (!day || !year || !clock) return kNoTime;
  const LogTime midnight =
      civilTime(static_cast<int>(*year), monthNumber(text.substr(3, 3)), static_cast<int>(*day), 0, 0, 0);
  return midnight == kNoTime ? kNoTime : midnight + static_cast<LogTime>(*clock);
}

}  // namespace

ClfLine readClfLine(std::string_view line) {
  LineFront front(line);
  const std::string_view address = front.takeWord();
  if (!isAddress(address) || front.takeWord().empty() /* ident */) return {};
  const auto user = front.takeUntil(" [");
  const auto date = front.takeUntil("] \"");
  LineEnd end(front.rest());
  const auto rest = end.takeBehind("\" ");
  if (!user || !date || !rest) return {};
  return {readDate(*date), address, *user == "-" ? std::string_view{} : *user, end.rest(), *rest};
}

}  // namespace quorvel
