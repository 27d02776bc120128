// The marks of a log that a session record is made from: recognising them, and passing them on in a compact form.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "log/block_reader.h"
#include "log/log_file.h"
#include "log/seeded_hash.h"

namespace quorvel {

/// What stands behind a session number. "Dash" kinds have "- " in front of the number as well.
enum class MarkKind : std::uint8_t {
  Connect,            ///< " Connected to "
  ConnectDash,        ///< the same behind "- " and the number
  User,               ///< " USER ", in any case, so that a line "User alice logged in" is one as well; its detail is
                      ///< the hash of the name behind it, with kHoldsLoggedIn where that is so, or 0 for a name
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
  Line,         ///< the number itself, anywhere in a line; its detail is a LineExtent
  ServerStart,  ///< kServerStartMark; belongs to no session number
};

inline constexpr std::size_t kMarkKinds = static_cast<std::size_t>(MarkKind::ServerStart) + 1;

[[nodiscard]] constexpr bool hasDetail(MarkKind kind) {
  return kind == MarkKind::User || kind == MarkKind::LoggedIn || kind == MarkKind::Line;
}

/// The line that a Line mark stands in. Either number is 0 where the line goes beyond the mark's block.
struct LineExtent {
  std::uint32_t before = 0;  ///< bytes of the line in front of the mark
  std::uint32_t behind = 0;  ///< from the mark to the line end
};

/// A session number as a number: its value for six digits in parentheses, else its eight bytes in lower case (which
/// is a far larger value, since the last of them is ")").
using SessionId = std::uint64_t;
inline constexpr SessionId kDigitIds = 1'000'000;

/// The number that ends with the ")" at bracket; without foldsCase its bytes as they are.
[[nodiscard]] SessionId sessionIdAt(const char* bracket, bool foldsCase = true);

/// Added to a name's hash when the name holds " logged in" itself.
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

/// Session numbers by which to choose marks.
class SessionIdSet {
 public:
  SessionIdSet();
  void insert(SessionId id);
  [[nodiscard]] bool contains(SessionId id) const {
    return id < kDigitIds ? m_digitIds[static_cast<std::size_t>(id)] : m_oddIds.contains(id);
  }

 private:
  std::vector<bool> m_digitIds;
  std::unordered_set<SessionId, SeededHash> m_oddIds;
};

/// Where each session number in digits stands last, as far as a reading of the log has come.
class LastPlaces {
 public:
  void note(SessionId id, const LogBlock& block);
  /// A position that the number does not stand behind; empty for a number that is not in digits.
  [[nodiscard]] std::optional<LogPosition> of(SessionId id) const;

 private:
  static constexpr std::size_t kNumbersPerPage = 1024;
  static constexpr LogPosition kUnit = 64;  ///< makes room for positions in four bytes
  using Page = std::array<std::uint32_t, kNumbersPerPage>;

  std::array<std::unique_ptr<Page>, (kDigitIds + kNumbersPerPage - 1) / kNumbersPerPage> m_pages;
};

/// Finds every place where one of these session numbers stands, and every server start, and leaves it in
/// block.findings. Notes the places of all numbers in places, unless it is null.
void findSessionNumbers(LogBlock& block, const SessionIdSet& wanted, LastPlaces* places = nullptr);

/// Takes the next mark off the findings of a block, from index on, which moves behind it.
[[nodiscard]] LogMark takeMark(const std::vector<std::uint64_t>& findings, std::size_t& index);

}  // namespace quorvel
