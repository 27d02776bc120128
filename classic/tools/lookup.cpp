#include "classic/tools/lookup.h"

namespace quorvel {

bool isHostOrAddress(std::string_view text) {
  constexpr std::string_view kAllowed = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.-:%";
  if (text.empty() || text.size() > kLongestHostName || text.front() == '-') return false;
  return text.find_first_not_of(kAllowed) == std::string_view::npos;
}

}  // namespace quorvel
