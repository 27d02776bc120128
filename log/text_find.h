// Finds a text in a file of any size.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "log/file_system.h"

namespace quorvel {

/// A text looked for without regard to case, many bytes at a step.
class TextFinder {
 public:
  /// text is not empty.
  explicit TextFinder(std::string_view text);

  /// Index of the first hit at or after from; npos: none.
  [[nodiscard]] std::size_t find(std::string_view in, std::size_t from = 0) const;
  [[nodiscard]] std::size_t length() const { return m_text.size(); }

 private:
  std::string m_text;                   // in lower case
  std::array<std::size_t, 256> m_step;  // by the byte that stands at the text's end: how far the next hit is at least
};

/// Calls found with the offset (from 0) of each hit that begins in [from, to); progress with the bytes read after each
/// megabyte. Either ends the search with false.
Status findText(const File& file, std::uint64_t from, std::uint64_t to, const TextFinder& finder,
                const std::function<bool(std::uint64_t offset)>& found,
                const std::function<bool(std::uint64_t bytes)>& progress);

}  // namespace quorvel
