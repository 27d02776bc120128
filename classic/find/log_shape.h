// Whose log it is, told by its first lines: that decides who finds its sessions.
#pragma once

#include <cstdint>
#include <string_view>

#include "log/log_file.h"

namespace quorvel {

enum class LogShape : std::uint8_t {
  Classic,  ///< Serv-U until version 6, and whatever is not positively another one
  Current,  ///< Serv-U from version 7 on: its sessions come from the activity engine
  Other,    ///< another server's
};

struct LogOrigin {
  LogShape shape = LogShape::Classic;
  std::string_view server{};  ///< for people; of Other and Current
};

/// A log that says nothing yet is a classic one.
[[nodiscard]] Result<LogOrigin> originOf(const LogFile& log);

}  // namespace quorvel
