#include "grammar/grammar.h"

#include <utility>

namespace quorvel {

int Grammar::recognise(const LogStart& start, Dialect& dialect) const {
  int lines = 0;
  for (const std::string_view line : start.lines) {
    Event event;
    parse(line, dialect, event);
    if (event.kind != EventKind::Unknown) ++lines;
  }
  return lines;
}

Recognised recogniseLog(const LogStart& start) {
  Recognised best;
  int most = 0;
  for (const Grammar* grammar : grammars()) {
    Dialect dialect;
    const int lines = grammar->recognise(start, dialect);
    if (lines > most) {
      most = lines;
      best = {grammar, std::move(dialect)};
    }
  }
  return best;
}

}  // namespace quorvel
