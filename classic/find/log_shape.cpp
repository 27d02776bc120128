#include "classic/find/log_shape.h"

#include <string>
#include <vector>

#include "activity/log_start.h"
#include "grammar/all_grammars.h"

namespace quorvel {

LogOrigin originOf(const LogFile& log) {
  std::string start(kLogStartBytes, '\0');
  const auto count = log.readAt(1, start);
  start.resize(count.isOk() ? count.value() : 0);
  const std::vector<std::string_view> lines = startLines(start);
  const Grammar* const grammar = recogniseLog({lines}).grammar;
  if (grammar == nullptr || grammar == &servUClassic()) return {};
  return {grammar == &servU() ? LogShape::Current : LogShape::Other, grammar->title()};
}

}  // namespace quorvel
