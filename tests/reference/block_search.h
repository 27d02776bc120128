// The block-wise searches of the session finder, written down literally: slow, simple, and sharing nothing with the
// program but the wish to get the same results.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quorvel::test {

/// Lower case of Windows-1252 text, from a spelled-out alphabet.
[[nodiscard]] std::string lowerCase(std::string_view text);

/// Searches one log held in memory. Positions are bytes counted from 1; in front of the log and behind it lie blanks.
class BlockSearch {
 public:
  struct SessionEnd {
    std::int64_t position = 0;  ///< also the session limit; 0: not found
    bool isServerStart = false;
  };

  static constexpr std::int64_t kBlockSize = 4000;

  /// Positions searched from may lie up to one block below 1.
  explicit BlockSearch(std::string_view log);

  [[nodiscard]] std::int64_t length() const { return m_length; }

  [[nodiscard]] std::int64_t FindForward(std::string_view text, std::int64_t start) const;
  [[nodiscard]] std::int64_t FindForwardLimited(std::string_view text, std::int64_t start, std::int64_t limit) const;
  [[nodiscard]] SessionEnd FindSessionEnd(std::int64_t start, std::string_view closeText) const;

  /// count bytes as they stand in the log, blanks where there is none.
  [[nodiscard]] std::string bytesAt(std::int64_t position, std::size_t count) const;
  /// From position up to, not including, the next end found by FindForward; to the end of the log when there is none.
  [[nodiscard]] std::string textUpTo(char end, std::int64_t position) const;

 private:
  [[nodiscard]] std::string_view foldedBlock(std::int64_t position) const;

  std::int64_t m_length;
  std::string m_log;     ///< the log with a block of blanks on either side
  std::string m_folded;  ///< the same in lower case
};

}  // namespace quorvel::test
