// Session records as text, for failure messages.
#pragma once

#include <sstream>
#include <string>
#include <string_view>

#include "classic/find/user_act.h"

namespace quorvel::test {

/// Bytes that are not printable ASCII as \xNN; what lies between longest bytes at either end left out.
[[nodiscard]] inline std::string visible(std::string_view text, std::size_t longest = 80) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  if (text.size() > 2 * longest) {
    return visible(text.substr(0, longest)) + "...(" + std::to_string(text.size()) + " bytes)..." +
           visible(text.substr(text.size() - longest));
  }
  std::string shown;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    shown += byte >= 0x20 && byte < 0x7F ? std::string(1, c)
                                         : std::string{'\\', 'x', kDigits[byte / 16], kDigits[byte % 16]};
  }
  return shown;
}

[[nodiscard]] inline std::string describe(const UserAct& record) {
  std::ostringstream text;
  text << '{' << record.Position;
  for (const std::string* field :
       {&record.Name, &record.NumberInLog, &record.IP, &record.ConnectTime, &record.LogonTime, &record.LogoffTime})
    text << ", \"" << visible(*field) << '"';
  text << ", " << record.LogonNo << ", " << record.TreeIndex << '}';
  return text.str();
}

}  // namespace quorvel::test

namespace quorvel {

/// Lets GoogleTest print records.
inline void PrintTo(const UserAct& record, std::ostream* out) {
  *out << test::describe(record);
}

}  // namespace quorvel
