#include "tests/reference/block_search.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace quorvel::test {
namespace {

constexpr std::string_view kUpper =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZ\x8A\x8C\x8E\x9F\xC0\xC1\xC2\xC3\xC4\xC5\xC6\xC7\xC8\xC9\xCA\xCB\xCC\xCD\xCE\xCF"
    "\xD0\xD1\xD2\xD3\xD4\xD5\xD6\xD8\xD9\xDA\xDB\xDC\xDD\xDE";
constexpr std::string_view kLower =
    "abcdefghijklmnopqrstuvwxyz\x9A\x9C\x9E\xFF\xE0\xE1\xE2\xE3\xE4\xE5\xE6\xE7\xE8\xE9\xEA\xEB\xEC\xED\xEE\xEF"
    "\xF0\xF1\xF2\xF3\xF4\xF5\xF6\xF8\xF9\xFA\xFB\xFC\xFD\xFE";
static_assert(kUpper.size() == kLower.size());

std::int64_t size64(std::string_view text) {
  return static_cast<std::int64_t>(text.size());
}

}  // namespace

std::string lowerCase(std::string_view text) {
  static const std::array<char, 256> kTable = [] {
    std::array<char, 256> table{};
    std::iota(table.begin(), table.end(), '\0');
    for (std::size_t letter = 0; letter < kUpper.size(); ++letter)
      table[static_cast<unsigned char>(kUpper[letter])] = kLower[letter];
    return table;
  }();
  std::string folded(text);
  for (char& c : folded)
    c = kTable[static_cast<unsigned char>(c)];
  return folded;
}

BlockSearch::BlockSearch(std::string_view log) : m_length(size64(log)) {
  const std::string blanks(kBlockSize, ' ');
  m_log = blanks + std::string(log) + blanks;
  m_folded = lowerCase(m_log);
}

std::string_view BlockSearch::foldedBlock(std::int64_t position) const {
  return std::string_view(m_folded).substr(static_cast<std::size_t>(position - 1 + kBlockSize), kBlockSize);
}

std::int64_t BlockSearch::FindForward(std::string_view text, std::int64_t start) const {
  return start >= m_length ? 0 : FindForwardLimited(text, start, m_length);
}

std::int64_t BlockSearch::FindForwardLimited(std::string_view text, std::int64_t start, std::int64_t limit) const {
  if (start >= m_length) return start;
  const std::string wanted = lowerCase(text);
  const std::int64_t step = kBlockSize - size64(text);
  for (std::int64_t position = start; position < m_length && (position == start || position <= limit);
       position += step) {
    const std::size_t index = foldedBlock(position).find(wanted);
    if (index != std::string_view::npos) return position + static_cast<std::int64_t>(index);
    if (step <= 0) return 0;  // the next block would not lie further on
  }
  return 0;
}

BlockSearch::SessionEnd BlockSearch::FindSessionEnd(std::int64_t start, std::string_view closeText) const {
  if (start >= m_length) return {start, false};
  const std::string close = lowerCase(closeText);
  const std::string serverStart = "- starting ftp server...";
  const std::int64_t step = kBlockSize - size64(close) - size64(serverStart);
  for (std::int64_t position = start; position < m_length; position += step) {
    const std::size_t closeIndex = foldedBlock(position).find(close);
    const std::size_t serverIndex = foldedBlock(position).find(serverStart);
    const std::size_t first = std::min(closeIndex, serverIndex);
    if (first != std::string_view::npos) return {position + static_cast<std::int64_t>(first), serverIndex < closeIndex};
  }
  return {};
}

std::string BlockSearch::bytesAt(std::int64_t position, std::size_t count) const {
  const std::int64_t from = std::clamp<std::int64_t>(position - 1 + kBlockSize, 0, size64(m_log));
  std::string bytes = m_log.substr(static_cast<std::size_t>(from), count);
  bytes.resize(count, ' ');
  return bytes;
}

std::string BlockSearch::textUpTo(char end, std::int64_t position) const {
  const std::int64_t found = FindForward(std::string_view(&end, 1), position);
  const std::int64_t behind = found == 0 ? m_length + 1 : found;
  if (behind <= position) return {};
  const std::string text = bytesAt(position, static_cast<std::size_t>(behind - position));
  return text.substr(0, text.find(end));  // the search never looks at a log's last byte alone
}

}  // namespace quorvel::test
