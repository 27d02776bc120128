#include "grammar/grammar.h"

#include <utility>

namespace quorvel {

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
