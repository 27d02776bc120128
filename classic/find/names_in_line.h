// The names in a line that may be those of a log-on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "log/text.h"

namespace quorvel {

/// A longer name cannot be found in a block of 4000 bytes with the rest of its line.
inline constexpr std::size_t kLongestSearchedName = 3973;

/// Whether text, usually in the same case, stands at from, which has enough readable bytes.
[[nodiscard]] inline bool standsAt(const char* from, std::string_view text) {
  if (std::memcmp(from, text.data(), text.size()) == 0) return true;
  for (const char c : text) {
    if (foldCase(*from++) != foldCase(c)) return false;
  }
  return true;
}

/// Two polynomials in the bytes of a text in lower case, modulo a prime: the hash of a part follows from those of two
/// beginnings. Their bases differ from run to run, so that nobody can prepare two names that look the same.
struct TextHash {
  std::uint64_t first = 0;
  std::uint64_t second = 0;
};

/// Looks at one name of a line after the other. They may overlap, each reaching to the line's end: all the same each
/// byte is looked at once. Text must be readable for kLongestSearchedName + 16 bytes behind the start of a name, and
/// stay where it is until the next line is looked at.
class NamesInLine {
 public:
  /// Names of a line are looked at in the order in which they start.
  void lookAt(const char* name);

  // What follows speaks of the name looked at last, and of no more of it than kLongestSearchedName bytes.

  /// Where " logged in" stands for the index-th time behind the start, counted from 0; null: so often it does not.
  /// The text in front of each may be the name of a log-on.
  [[nodiscard]] const char* loggedIn(std::size_t index) const {
    return m_firstLoggedIn + index < m_loggedIn.size() ? inReach(m_loggedIn[m_firstLoggedIn + index]) : nullptr;
  }
  /// How often, where the line's end is in reach.
  [[nodiscard]] std::size_t loggedInCount() const { return m_loggedIn.size() - m_firstLoggedIn; }
  /// Where the line ends; null: further away.
  [[nodiscard]] const char* lineEnd() const { return m_isAtEnd ? inReach(m_scanned) : nullptr; }
  /// Hash of the text up to end, without regard to case. Never 0; the highest bit is free.
  [[nodiscard]] std::uint64_t hash(const char* end);

 private:
  void startAt(const char* name);
  void hashTo(const char* end);
  [[nodiscard]] const char* inReach(const char* at) const {
    return at - m_name <= static_cast<std::ptrdiff_t>(kLongestSearchedName) ? at : nullptr;
  }

  const char* m_begin = nullptr;  ///< where the first name starts
  const char* m_name = nullptr;
  const char* m_scanned = nullptr;
  bool m_isAtEnd = false;               ///< m_scanned is the line's end
  std::vector<const char*> m_loggedIn;  ///< from m_begin on
  std::size_t m_firstLoggedIn = 0;      ///< behind m_name
  const char* m_hashedFrom = nullptr;
  std::vector<TextHash> m_hashes;  ///< of what lies between m_hashedFrom and each byte behind, as far as asked for
};

}  // namespace quorvel
