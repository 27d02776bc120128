#include "activity/block_cutter.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace quorvel {
namespace {

bool isUtf8Continuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

/// Where to cut a line that goes on: in front of a character that may not be whole.
std::size_t wholeCharacters(std::string_view text) {
  std::size_t end = text.size();
  for (int back = 0; back < 3 && end > 1 && isUtf8Continuation(text[end - 1]); ++back)
    --end;
  return end > 1 && static_cast<unsigned char>(text[end - 1]) >= 0xC0 ? end - 1 : text.size();
}

}  // namespace

Result<std::string_view> BlockCutter::peek() {
  std::vector<char> buffer(kBlockSize);
  const auto count = fill(buffer);
  if (!count.isOk()) return count.error();
  buffer.resize(count.value());
  m_carried = std::move(buffer);
  return std::string_view(m_carried.data(), m_carried.size());
}

void BlockCutter::begin(const Grammar& grammar, Dialect dialect) {
  m_grammar = &grammar;
  m_dialect = std::make_shared<const Dialect>(std::move(dialect));
}

Result<bool> BlockCutter::next(Block& block, bool isFinal) {
  block.buffer.resize(kBlockSize);
  const auto filled = fill(block.buffer);
  if (!filled.isOk()) return filled.error();
  const std::string_view text(block.buffer.data(), filled.value());
  const bool isFull = text.size() == kBlockSize;
  const std::size_t lastEnd = text.rfind('\n');
  std::size_t size = lastEnd == std::string_view::npos ? 0 : lastEnd + 1;
  if (size == 0 && isFull) size = wholeCharacters(text);
  if (!isFull && isFinal) size = text.size();
  m_carried.assign(text.begin() + static_cast<std::ptrdiff_t>(size), text.end());
  if (size == 0) return false;

  block.size = size;
  block.position = m_position;
  block.continued = m_isInLine ? std::min(text.find('\n'), size - 1) + 1 : 0;
  m_position += size;
  m_isInLine = text[size - 1] != '\n';
  findDirectives(block);
  return true;
}

Result<std::uint64_t> BlockCutter::skip(std::uint64_t bytes) {
  std::uint64_t lines = 0;
  std::vector<char> buffer(kBlockSize);
  while (bytes > 0) {
    const auto filled = fill(buffer);
    if (!filled.isOk()) return filled.error();
    const auto passed = static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(bytes, filled.value()));
    if (passed == 0) break;
    lines += static_cast<std::uint64_t>(std::count(buffer.begin(), buffer.begin() + passed, '\n'));
    m_carried.assign(buffer.begin() + passed, buffer.begin() + static_cast<std::ptrdiff_t>(filled.value()));
    m_position += static_cast<std::uint64_t>(passed);
    bytes -= static_cast<std::uint64_t>(passed);
  }
  return lines;
}

/// What is left of the block before, and more behind it.
Result<std::size_t> BlockCutter::fill(std::vector<char>& buffer) {
  std::copy(m_carried.begin(), m_carried.end(), buffer.begin());
  std::size_t count = m_carried.size();
  while (count < buffer.size()) {
    const auto more = m_source.read(std::span(buffer).subspan(count));
    if (!more.isOk()) return more.error();
    if (more.value() == 0) break;
    count += more.value();
  }
  return count;
}

void BlockCutter::findDirectives(Block& block) {
  block.dialects.assign(1, {0, m_dialect});
  if (!m_grammar->hasDirectives()) return;
  const std::string_view text = block.text();
  for (std::size_t at = block.continued; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    if (text[at] == '#') {
      Dialect changed = *m_dialect;
      std::string_view line = text.substr(at, end - at);
      if (line.ends_with('\r')) line.remove_suffix(1);
      m_grammar->takeDirective(line, changed);
      if (changed != *m_dialect) {
        m_dialect = std::make_shared<const Dialect>(std::move(changed));
        block.dialects.push_back({at, m_dialect});
      }
    }
    at = end + 1;
  }
}

}  // namespace quorvel
