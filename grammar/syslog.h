// Lines of a syslog or of journalctl: whose they are, and what is left for the server's own grammar.
#pragma once

#include <string_view>

#include "grammar/grammar.h"

namespace quorvel {

/// `Nov 22 01:10:00 host proftpd[2212]: `, the same with an ISO date, of RFC 5424 or behind a priority.
struct SyslogLine {
  LogTime time = kNoTime;
  std::string_view program;  ///< empty: the front is no syslog's
  std::string_view process;  ///< digits; may be empty
  std::string_view message;
};
[[nodiscard]] SyslogLine readSyslogLine(std::string_view line, const Dialect& dialect);

}  // namespace quorvel
