// Where the lines of a file of any size begin, by few numbers.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "log/file_system.h"

namespace quorvel {

/// A line to show.
struct IndexedLine {
  std::uint64_t number = 0;  ///< from 0
  std::uint64_t offset = 0;  ///< of its first byte, from 0
  std::string text;          ///< without its end, cut behind LineIndex::kLongestText
};

/// Knows the offset of a line about every 64 KiB. One thread builds it, others may ask meanwhile: what they learn goes
/// as far as it was built.
class LineIndex {
 public:
  static constexpr std::size_t kLongestText = 4096;

  /// Reads the file to its end. progress is called about every megabyte with the bytes read; false stops.
  Status build(const File& file, const std::function<bool(std::uint64_t bytes)>& progress);

  /// Known so far; the last one may still grow.
  [[nodiscard]] std::uint64_t lineCount() const;
  /// The lines from number on, count at most.
  [[nodiscard]] Result<std::vector<IndexedLine>> lines(const File& file, std::uint64_t number, std::size_t count) const;
  /// The number of the line that holds the byte at offset; the last one known for what lies behind.
  [[nodiscard]] Result<std::uint64_t> lineAt(const File& file, std::uint64_t offset) const;

 private:
  struct Mark {
    std::uint64_t line = 0;
    std::uint64_t offset = 0;
  };

  [[nodiscard]] Mark markOfLine(std::uint64_t line) const;
  [[nodiscard]] Mark markOfOffset(std::uint64_t offset) const;

  mutable std::mutex m_mutex;
  std::vector<Mark> m_marks{Mark{}};
  std::uint64_t m_lines = 0;
  std::uint64_t m_bytes = 0;
};

}  // namespace quorvel
