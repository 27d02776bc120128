#include "log/text_find.h"

#include <algorithm>
#include <vector>

#include "log/text.h"

namespace quorvel {

TextFinder::TextFinder(std::string_view text) : m_text(foldCase(text)) {
  m_step.fill(m_text.size());
  for (std::size_t byte = 0; byte < m_step.size(); ++byte) {
    const char folded = foldCase(static_cast<char>(byte));
    for (std::size_t i = 0; i < m_text.size(); ++i)
      if (m_text[i] == folded) m_step[byte] = m_text.size() - 1 - i;
  }
}

std::size_t TextFinder::find(std::string_view in, std::size_t from) const {
  const std::size_t length = m_text.size();
  if (in.size() < length) return std::string_view::npos;
  const std::size_t last = in.size() - length;
  while (from <= last) {
    const std::size_t step = m_step[static_cast<unsigned char>(in[from + length - 1])];
    if (step > 0) {
      from += step;
      continue;
    }
    std::size_t same = 0;
    while (same < length && foldCase(in[from + same]) == m_text[same])
      ++same;
    if (same == length) return from;
    ++from;
  }
  return std::string_view::npos;
}

Status findText(const File& file, std::uint64_t from, std::uint64_t to, const TextFinder& finder,
                const std::function<bool(std::uint64_t)>& found, const std::function<bool(std::uint64_t)>& progress) {
  constexpr std::size_t kBlockSize = 1 << 20;
  const std::size_t overlap = finder.length() - 1;
  std::vector<char> block(kBlockSize + overlap);
  std::uint64_t read = 0;
  while (from < to) {
    const auto count = file.readAt(from, block);
    if (!count.isOk()) return count.error();
    const std::string_view text(block.data(), count.value());
    const std::uint64_t begins = std::min<std::uint64_t>(to - from, kBlockSize);
    for (std::size_t at = finder.find(text); at < begins && at != std::string_view::npos;
         at = finder.find(text, at + 1))
      if (!found(from + at)) return {};
    if (text.size() < block.size()) return {};
    from += kBlockSize;
    read += kBlockSize;
    if (!progress(read)) return {};
  }
  return {};
}

}  // namespace quorvel
