// Logs for tests, in the server's own lines.
#pragma once

#include <string>
#include <string_view>

namespace quorvel::test {

/// One line as the server writes it.
inline std::string logLine(std::string_view number, std::string_view event) {
  return "Wed 19Jan05 13:28:08 - (" + std::string(number) + ") " + std::string(event) + "\r\n";
}

/// A session from connect to close in which user sends one file of 5120 bytes and receives another. One more event can
/// be put in front of its end.
inline std::string logSession(std::string_view number, std::string_view user, std::string_view ip,
                              std::string_view event = {}) {
  const std::string name(user);
  return logLine(number, "Connected to " + std::string(ip) + " (Local address 10.0.0.1)") +
         logLine(number, "USER " + name) + logLine(number, "User " + name + " logged in") +
         logLine(number, "Sent file c:\\pub\\a.zip successfully (12.34 Kb/sec - 5120 bytes)") +
         logLine(number, "Received file c:\\pub\\b.zip successfully (1.00 Kb/sec - 100 bytes)") +
         (event.empty() ? "" : logLine(number, event)) + logLine(number, "Closing connection for user " + name);
}

}  // namespace quorvel::test
