// One user session of a log.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quorvel {

/// What a scan found out about one session. Members stand in the order of the record on disk.
struct UserAct {
  std::int64_t Position = 0;      ///< 1-based byte position in the log of the ")" behind the session number; 0: unknown
  std::string Name;               ///< user name, or kNoUserFound or kQuit
  std::string NumberInLog;        ///< the session number as it stands there, e.g. "(000012)"
  std::string IP;                 ///< client address
  std::string ConnectTime;        ///< 20-character stamp of the connect line
  std::string LogonTime;          ///< stamp of the line that decided the logon; failed logons carry a suffix
  std::string LogoffTime;         ///< stamp of the closing line, or kNotLoggedOut or kServerRestart
  std::int32_t LogonNo = 0;       ///< chronological number in the scan, from 1; equals the record number
  std::int32_t TreeIndex = 0;     ///< index of the session's node in the tree; 0 until a tree is built
  std::int64_t LastPosition = 0;  ///< where its last line begins; 0: unknown, as it is for classic logs

  friend bool operator==(const UserAct&, const UserAct&) = default;
};

/// The name as a record holds it where long names are cut.
[[nodiscard]] inline std::string_view trunkedName(std::string_view name) {
  constexpr std::size_t kLongest = 12;
  return name.substr(0, kLongest);
}

// Status words stored in a record instead of, or behind, a name or stamp. On disk, do not change.
inline constexpr const char* kNoUserFound = "NO_USER_FOUND";
inline constexpr const char* kQuit = "QUIT";
inline constexpr const char* kNotLoggedOut = "NOT_LOGGED_OUT";
inline constexpr const char* kServerRestart = "SERVER_RESTART";
inline constexpr const char* kHomeDirNotFound = " HOMEDIR_NOT_FOUND";
inline constexpr const char* kBadPassword = " BAD_PASSWORD";
inline constexpr const char* kUnauthorizedIp = " UNAUTHORIZED_IP";
inline constexpr const char* kNotLoggedIn = " NotLoggedIn";

}  // namespace quorvel
