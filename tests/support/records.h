// Session records as text, for failure messages.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "core/user_act.h"

namespace quorvel::test {

/// Bytes that are not printable ASCII as \xNN; the middle of a long text left out.
[[nodiscard]] inline std::string visible(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  constexpr std::size_t kLongest = 80;
  std::string shown;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (i == kLongest && text.size() > 2 * kLongest) {
      shown.append("...(").append(std::to_string(text.size())).append(" bytes)...");
      i = text.size() - kLongest;
    }
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte >= 0x20 && byte < 0x7F) {
      shown += text[i];
    } else {
      shown += {'\\', 'x', kDigits[byte / 16], kDigits[byte % 16]};
    }
  }
  return shown;
}

[[nodiscard]] inline std::string describe(const UserAct& record) {
  std::string text = std::string("{").append(std::to_string(record.Position));
  for (const std::string* field :
       {&record.Name, &record.NumberInLog, &record.IP, &record.ConnectTime, &record.LogonTime, &record.LogoffTime})
    text.append(", \"").append(visible(*field)).append("\"");
  return text.append(", " + std::to_string(record.LogonNo)).append(", " + std::to_string(record.TreeIndex)).append("}");
}

}  // namespace quorvel::test

namespace quorvel {

/// Lets GoogleTest print records.
inline void PrintTo(const UserAct& record, std::ostream* out) {
  *out << test::describe(record);
}

}  // namespace quorvel
