// Date and time as the program writes them, the same everywhere: 2005-01-19 and 13:28:08.
#pragma once

#include <string>

namespace quorvel {

struct DateTime {
  std::string date;
  std::string time;
};

/// Now, in local time.
[[nodiscard]] DateTime localNow();

}  // namespace quorvel
