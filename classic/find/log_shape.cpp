#include "classic/find/log_shape.h"

#include <string>
#include <vector>

#include "activity/log_start.h"
#include "grammar/all_grammars.h"

namespace quorvel {

Result<LogOrigin> originOf(const LogFile& log) {
  std::string start(kLogStartBytes, '\0');
  const auto count = log.readAt(1, start);
  if (!count.isOk()) return count.error();
  start.resize(count.value());
  const std::vector<std::string_view> lines = startLines(start);
  const Grammar* const grammar = recogniseLog({lines}).grammar;
  if (grammar == nullptr || grammar == &servUClassic()) return LogOrigin();
  return LogOrigin{grammar == &servU() ? LogShape::Current : LogShape::Other, grammar->title()};
}

}  // namespace quorvel
