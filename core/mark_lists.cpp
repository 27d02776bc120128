#include "core/mark_lists.h"

#include <algorithm>

namespace quorvel {
namespace {

constexpr std::uint16_t bitOf(MarkKind kind) {
  return static_cast<std::uint16_t>(1u << static_cast<unsigned>(kind));
}

/// The kinds that, once seen, make a later mark of this kind superfluous.
constexpr std::uint16_t coveredBy(MarkKind kind) {
  switch (kind) {
    case MarkKind::Line:
    case MarkKind::LoggedIn:
      return 0;  // one line says nothing of another
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
  m_chunks.push_back(std::make_unique<Chunk>());
  m_chunks.back()->count = 1;  // number 0 stands for no mark
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
  for (; m_firstChunk < number >> kChunkBits; ++m_firstChunk)
    m_chunks.pop_front();
}

MarkNumber MarkLists::connectAfter(MarkNumber number) const {
  while (true) {
    number += number != 0 && hasDetail(kind(number)) ? 2u : 1u;
    while ((number >> kChunkBits) - m_firstChunk < m_chunks.size() && indexOf(number) >= chunkOf(number).count) {
      number = ((number >> kChunkBits) + 1) << kChunkBits;
    }
    if ((number >> kChunkBits) - m_firstChunk >= m_chunks.size()) return 0;
    if (isConnect(kind(number))) return number;
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
  const std::uint32_t room = hasDetail(mark.kind) ? 2 : 1;
  Chunk* chunk = m_chunks.back().get();
  if (chunk->count + room > kChunkSize || mark.position - chunk->base > LogPosition{kLargestOffset}) {
    m_chunks.push_back(std::make_unique<Chunk>());
    chunk = m_chunks.back().get();
    chunk->base = mark.position;
  }
  const std::uint32_t at = chunk->count;
  const auto offset = static_cast<std::uint32_t>(mark.position - chunk->base);
  chunk->marks[at] = {(offset << kKindBits) | static_cast<std::uint32_t>(mark.kind), 0};
  if (room > 1) chunk->marks[at + 1] = std::bit_cast<Mark>(mark.detail);
  chunk->count += room;
  return ((m_firstChunk + static_cast<std::uint32_t>(m_chunks.size()) - 1) << kChunkBits) + at;
}

void MarkLists::purgeOddTails() {
  std::erase_if(m_oddTails, [this](const auto& entry) { return entry.second.last < m_keptFrom; });
  m_purgeAt = std::max<std::size_t>(4096, 2 * m_oddTails.size());
}

}  // namespace quorvel
