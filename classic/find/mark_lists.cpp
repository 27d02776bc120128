#include "classic/find/mark_lists.h"

#include <algorithm>

namespace quorvel {
namespace {

constexpr std::uint16_t bitOf(MarkKind kind) {
  return static_cast<std::uint16_t>(1u << static_cast<unsigned>(kind));
}

/// The kinds that, once seen, make a later mark of this kind superfluous.
constexpr std::uint16_t coveredBy(MarkKind kind) {
  switch (kind) {
    case MarkKind::Close:
      return bitOf(MarkKind::Close) | bitOf(MarkKind::CloseDash);
    case MarkKind::Other530:
      return bitOf(MarkKind::PasswordIncorrect) | bitOf(MarkKind::IncorrectPassword) | bitOf(MarkKind::UnauthorizedIp) |
             bitOf(MarkKind::NoHomeDirectory) | bitOf(MarkKind::Other530);
    default:
      return bitOf(kind);
  }
}

}  // namespace

MarkLists::MarkLists() {
  addChunk(0);
  m_front = m_back;
  m_front->count = 1;  // number 0 stands for no mark
}

MarkNumber MarkLists::append(const LogMark& mark) {
  Tail& tail = tailOf(mark.id);
  if (!isConnect(mark.kind) && !isWanted(tail, mark.kind)) return 0;

  const MarkNumber number = add(mark);
  if (tail.last >= m_keptFrom) chunkOf(tail.last).marks[indexOf(tail.last)].next = number;
  tail.last = number;
  tail.kindsSeen = isConnect(mark.kind) ? 0 : static_cast<std::uint16_t>(tail.kindsSeen | bitOf(mark.kind));
  return number;
}

void MarkLists::dropBefore(MarkNumber number) {
  m_keptFrom = number;
  if (number >> kChunkBits == m_firstChunk) return;
  for (; m_firstChunk < number >> kChunkBits; ++m_firstChunk)
    m_chunks.pop_front();
  m_front = m_chunks.front().get();
}

MarkNumber MarkLists::connectAfter(MarkNumber number) const {
  std::uint32_t index = (number >> kChunkBits) - m_firstChunk;
  std::uint32_t at = indexOf(number) + roomOf(kind(number));
  while (true) {
    const Chunk& chunk = index == 0 ? *m_front : *m_chunks[index];
    for (; at < chunk.count; at += roomOf(kindOf(chunk.marks[at]))) {
      if (isConnect(kindOf(chunk.marks[at]))) return ((m_firstChunk + index) << kChunkBits) + at;
    }
    if (++index == m_chunks.size()) return 0;
    at = 0;
  }
}

MarkLists::Tail& MarkLists::tailOf(SessionId id) {
  if (id < kDigitIds) {
    auto& page = m_pages[id / kTailsPerPage];
    if (!page) page = std::make_unique<TailPage>();
    return (*page)[id % kTailsPerPage];
  }
  if (m_oddTails.size() >= m_purgeAt) purgeOddTails();
  return m_oddTails[id];
}

/// A mark can only be asked for by a connect mark in front of it that is still kept.
bool MarkLists::isWanted(const Tail& tail, MarkKind kind) const {
  return tail.last >= m_keptFrom && (tail.kindsSeen & coveredBy(kind)) == 0;
}

MarkNumber MarkLists::add(const LogMark& mark) {
  const std::uint32_t room = roomOf(mark.kind);
  if (m_back->count + room > kChunkSize || mark.position - m_back->base > LogPosition{kLargestOffset})
    addChunk(mark.position);
  const std::uint32_t at = m_back->count;
  const auto offset = static_cast<std::uint32_t>(mark.position - m_back->base);
  m_back->marks[at] = {(offset << kKindBits) | static_cast<std::uint32_t>(mark.kind), 0};
  if (room > 1) m_back->marks[at + 1] = std::bit_cast<Mark>(mark.detail);
  m_back->count += room;
  return ((m_firstChunk + static_cast<std::uint32_t>(m_chunks.size()) - 1) << kChunkBits) + at;
}

void MarkLists::addChunk(LogPosition base) {
  m_chunks.push_back(std::make_unique<Chunk>());
  m_back = m_chunks.back().get();
  m_back->base = base;
}

void MarkLists::purgeOddTails() {
  std::erase_if(m_oddTails, [this](const auto& entry) { return entry.second.last < m_keptFrom; });
  m_purgeAt = std::max<std::size_t>(4096, 2 * m_oddTails.size());
}

}  // namespace quorvel
