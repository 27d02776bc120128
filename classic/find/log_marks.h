// The marks of a log that a session record is made from: recognising them, and passing them on in a compact form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "log/block_reader.h"
#include "log/log_file.h"

namespace quorvel {

/// What stands behind a session number. "Dash" kinds have "- " in front of the number as well.
enum class MarkKind : std::uint8_t {
  Connect,            ///< " Connected to "
  ConnectDash,        ///< the same behind "- " and the number
  User,               ///< " USER ", in any case, so that a line "User alice logged in" is one as well; its detail is
                      ///< the hash of the name behind it, kHoldsLoggedIn, or 0 for a name
                      ///< longer than any that is looked for
  Quit,               ///< " QUIT"
  Close,              ///< " Closing connection" without "- "
  CloseDash,          ///< the same with "- "
  PasswordIncorrect,  ///< "- ", number, " 530 Not logged in - password incorrect"
  IncorrectPassword,  ///< "- ", number, " 530 Incorrect password"
  UnauthorizedIp,     ///< "- ", number, " 530 Not logged in - unauthorized IP address"
  NoHomeDirectory,    ///< "- ", number, " 530 Not logged in - cannot find home directory"
  Other530,           ///< "- ", number, " 530" and anything else
  Anonymous,          ///< "- ", number, " anonymous logged in"
  LoggedIn,     ///< "- ", number, " User ", text, " logged in"; its detail is the hash of the text up to the first
                ///< " logged in"
  ServerStart,  ///< kServerStartMark; belongs to no session number
};

inline constexpr std::size_t kMarkKinds = static_cast<std::size_t>(MarkKind::ServerStart) + 1;

[[nodiscard]] constexpr bool hasDetail(MarkKind kind) {
  return kind == MarkKind::User || kind == MarkKind::LoggedIn;
}

/// A session number as a number: its value for six digits in parentheses, else its eight bytes in lower case (which
/// is a far larger value, since the last of them is ")").
using SessionId = std::uint64_t;
inline constexpr SessionId kDigitIds = 1'000'000;

/// The number that ends with the ")" at bracket; without foldsCase its bytes as they are.
[[nodiscard]] SessionId sessionIdAt(const char* bracket, bool foldsCase = true);

/// Instead of a name's hash when the name holds " logged in" itself.
inline constexpr std::uint64_t kHoldsLoggedIn = std::uint64_t{1} << 63;
/// From the ")" of a User mark to the name behind it.
inline constexpr std::ptrdiff_t kForwardToName = 7;

/// One mark. position is that of the ")" behind the session number, or of the "-" of a server start.
struct LogMark {
  LogPosition position = 0;
  MarkKind kind = MarkKind::Connect;
  SessionId id = 0;
  std::uint64_t detail = 0;  ///< where hasDetail(kind)
};

/// Finds every mark in a block and leaves it in block.findings.
void findMarks(LogBlock& block);

/// Takes the next mark off the findings of a block, from index on, which moves behind it.
[[nodiscard]] LogMark takeMark(const std::vector<std::uint64_t>& findings, std::size_t& index);

}  // namespace quorvel
