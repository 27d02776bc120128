// What OpenSSH says in a line, wherever it stands: in a log of its own or behind the front of a syslog.
#pragma once

#include <string_view>

#include "grammar/event.h"

namespace quorvel {

/// Reads what stands behind the process number. An event that stays Unknown tells nothing.
void readOpenSshMessage(std::string_view message, Event& event);

}  // namespace quorvel
