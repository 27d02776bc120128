// The grammars by name, for grammars.cpp and for those that read lines of several servers.
#pragma once

#include "grammar/grammar.h"

namespace quorvel {

[[nodiscard]] const Grammar& servUClassic();
[[nodiscard]] const Grammar& servU();
[[nodiscard]] const Grammar& vsftpd();
[[nodiscard]] const Grammar& xferlog();
[[nodiscard]] const Grammar& syslog();
[[nodiscard]] const Grammar& proftpd();
[[nodiscard]] const Grammar& pureFtpd();
[[nodiscard]] const Grammar& openSsh();
[[nodiscard]] const Grammar& fileZilla();
[[nodiscard]] const Grammar& iis();

}  // namespace quorvel
