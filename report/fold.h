// Letters without their case, for searches in UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace quorvel {

/// text, valid UTF-8, with the capitals of Latin, Greek and Cyrillic made small, one for one.
[[nodiscard]] std::string foldUtf8(std::string_view text);

}  // namespace quorvel
