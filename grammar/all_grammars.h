// The grammars by name, for grammars.cpp and for those that read lines of several servers.
#pragma once

#include "grammar/grammar.h"

namespace quorvel {

[[nodiscard]] const Grammar& servUClassic();
[[nodiscard]] const Grammar& servU();
[[nodiscard]] const Grammar& vsftpd();
[[nodiscard]] const Grammar& xferlog();

}  // namespace quorvel
