#include "log/line_index.h"

#include <algorithm>
#include <cstring>

#include "log/line_walk.h"

namespace quorvel {
namespace {

constexpr std::size_t kBlockSize = 1 << 20;
constexpr std::uint64_t kBetweenMarks = 64 << 10;
const std::atomic<bool> kNeverCancelled = false;

}  // namespace

Status LineIndex::build(const File& file, const std::function<bool(std::uint64_t)>& progress) {
  std::vector<char> block(kBlockSize);
  std::uint64_t base = 0;
  std::uint64_t line = 0;
  std::uint64_t lastMark = 0;
  bool endsInLine = false;
  std::vector<Mark> marks;
  while (true) {
    const auto count = file.readAt(base, block);
    if (!count.isOk()) return count.error();
    const char* const begin = block.data();
    const char* const end = begin + count.value();
    marks.clear();
    for (const char* at = begin; at < end;) {
      at = static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
      if (at == nullptr) break;
      ++line;
      ++at;
      const std::uint64_t start = base + static_cast<std::uint64_t>(at - begin);
      if (start - lastMark < kBetweenMarks) continue;
      lastMark = start;
      marks.push_back({line, start});
    }
    if (begin < end) endsInLine = end[-1] != '\n';
    base += count.value();
    {
      const std::lock_guard lock(m_mutex);
      m_marks.insert(m_marks.end(), marks.begin(), marks.end());
      m_lines = line + (endsInLine ? 1 : 0);
      m_bytes = base;
    }
    if (count.value() < block.size() || !progress(base)) return {};
  }
}

std::uint64_t LineIndex::lineCount() const {
  const std::lock_guard lock(m_mutex);
  return m_lines;
}

LineIndex::Mark LineIndex::markOfLine(std::uint64_t line) const {
  const std::lock_guard lock(m_mutex);
  const auto above = std::upper_bound(m_marks.begin(), m_marks.end(), line,
                                      [](std::uint64_t value, const Mark& mark) { return value < mark.line; });
  return *(above - 1);
}

LineIndex::Mark LineIndex::markOfOffset(std::uint64_t offset) const {
  const std::lock_guard lock(m_mutex);
  const auto above = std::upper_bound(m_marks.begin(), m_marks.end(), offset,
                                      [](std::uint64_t value, const Mark& mark) { return value < mark.offset; });
  return *(above - 1);
}

Result<std::vector<IndexedLine>> LineIndex::lines(const File& file, std::uint64_t number, std::size_t count) const {
  std::vector<IndexedLine> found;
  const std::uint64_t known = lineCount();
  if (number >= known || count == 0) return found;
  const Mark mark = markOfLine(number);
  std::uint64_t line = mark.line;
  const auto take = [&](std::uint64_t offset, std::string_view text) {
    if (line >= number) found.push_back({line, offset, std::string(text.substr(0, kLongestText))});
    ++line;
    return found.size() < count && line < known;
  };
  const Status status = walkLines(file, mark.offset, UINT64_MAX, kNeverCancelled, take);
  if (!status.isOk()) return status.error();
  return found;
}

Result<std::uint64_t> LineIndex::lineAt(const File& file, std::uint64_t offset) const {
  const Mark mark = markOfOffset(offset);
  const std::uint64_t known = lineCount();
  std::uint64_t line = mark.line;
  const auto take = [&line, offset, mark](std::uint64_t start, std::string_view) {
    if (start > offset) return false;
    if (start > mark.offset) ++line;
    return true;
  };
  const Status status = walkLines(file, mark.offset, offset + 1, kNeverCancelled, take);
  if (!status.isOk()) return status.error();
  return known == 0 ? 0 : std::min(line, known - 1);
}

}  // namespace quorvel
