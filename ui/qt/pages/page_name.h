// The pages of the window, in the order of their tabs.
#pragma once

#include <cstdint>

namespace quorvel {

enum class PageName : std::uint8_t {
  SessionTree,
  Overview,
  Sessions,
  Logins,
  Files,
  Transfers,
  Traffic,
  Log
};
inline constexpr int kPageCount = 8;

}  // namespace quorvel
