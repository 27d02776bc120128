// The marks of a log ahead of the session being looked at: in log order, and chained for each session number.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <deque>
#include <memory>
#include <unordered_map>

#include "classic/find/log_marks.h"
#include "log/seeded_hash.h"

namespace quorvel {

/// Number of a mark in the order of the log, from 1; 0 for none.
using MarkNumber = std::uint32_t;

/// Keeps what a search can still ask for: for every connect mark not yet passed by, the first mark of each other kind
/// behind it that carries the same session number. Takes 8 bytes a mark, 16 where it has a detail.
class MarkLists {
 public:
  MarkLists();
  MarkLists(const MarkLists&) = delete;
  MarkLists& operator=(const MarkLists&) = delete;

  /// Adds the next mark of the log and returns its number, 0 when nobody can ask for it. Server starts and logged-in
  /// lines do not belong here.
  MarkNumber append(const LogMark& mark);
  /// Forgets the marks before number, of which nobody will ask.
  void dropBefore(MarkNumber number);

  /// Number of marks kept; one with a detail counts twice.
  [[nodiscard]] std::size_t size() const {
    return (m_chunks.size() - 1) * kChunkSize + m_back->count - indexOf(m_keptFrom);
  }

  /// The first connect mark behind number; 0 when there is none yet.
  [[nodiscard]] MarkNumber connectAfter(MarkNumber number) const;
  /// The next kept mark with the same session number; 0 when there is none yet.
  [[nodiscard]] MarkNumber nextOfSession(MarkNumber number) const { return mark(number).next; }

  [[nodiscard]] LogPosition position(MarkNumber number) const {
    const Chunk& chunk = chunkOf(number);
    return chunk.base + (chunk.marks[indexOf(number)].offsetAndKind >> kKindBits);
  }
  [[nodiscard]] MarkKind kind(MarkNumber number) const { return kindOf(mark(number)); }
  /// Of a mark that has one.
  [[nodiscard]] std::uint64_t detail(MarkNumber number) const { return std::bit_cast<std::uint64_t>(mark(number + 1)); }
  void setDetail(MarkNumber number, std::uint64_t detail) {
    chunkOf(number).marks[indexOf(number) + 1] = std::bit_cast<Mark>(detail);
  }

 private:
  static constexpr std::uint32_t kChunkBits = 12;
  static constexpr std::uint32_t kChunkSize = 1u << kChunkBits;
  static constexpr int kKindBits = 4;
  static constexpr std::uint32_t kLargestOffset = (1u << (32 - kKindBits)) - 1;

  /// The detail of a mark takes the place of the mark behind it.
  struct Mark {
    std::uint32_t offsetAndKind;  ///< distance to the chunk's base, and the kind
    MarkNumber next;              ///< of the same session number
  };
  static_assert(sizeof(Mark) == sizeof(std::uint64_t));

  struct Chunk {
    LogPosition base = 0;
    std::uint32_t count = 0;  ///< marks used; a chunk may end early
    std::array<Mark, kChunkSize> marks;
  };

  /// What is known of one session number: only what lies behind its last connect mark.
  struct Tail {
    MarkNumber last = 0;          ///< its last mark
    std::uint16_t kindsSeen = 0;  ///< one bit for each kind behind its last connect mark
  };
  static constexpr std::size_t kTailsPerPage = 1024;
  static constexpr std::size_t kTailPages = (kDigitIds + kTailsPerPage - 1) / kTailsPerPage;
  using TailPage = std::array<Tail, kTailsPerPage>;

  [[nodiscard]] static MarkKind kindOf(const Mark& mark) {
    return static_cast<MarkKind>(mark.offsetAndKind & ((1u << kKindBits) - 1));
  }
  /// The places a mark takes.
  [[nodiscard]] static std::uint32_t roomOf(MarkKind kind) { return hasDetail(kind) ? 2 : 1; }
  [[nodiscard]] static bool isConnect(MarkKind kind) {
    return kind == MarkKind::Connect || kind == MarkKind::ConnectDash;
  }
  [[nodiscard]] Tail& tailOf(SessionId id);
  [[nodiscard]] bool isWanted(const Tail& tail, MarkKind kind) const;
  [[nodiscard]] MarkNumber add(const LogMark& mark);
  void addChunk(LogPosition base);
  void purgeOddTails();

  [[nodiscard]] static std::uint32_t indexOf(MarkNumber number) { return number & (kChunkSize - 1); }
  /// The first chunk is the one most asked for.
  [[nodiscard]] Chunk& chunkOf(MarkNumber number) const {
    const std::uint32_t index = (number >> kChunkBits) - m_firstChunk;
    return index == 0 ? *m_front : *m_chunks[index];
  }
  [[nodiscard]] const Mark& mark(MarkNumber number) const { return chunkOf(number).marks[indexOf(number)]; }

  std::deque<std::unique_ptr<Chunk>> m_chunks;
  Chunk* m_front = nullptr;        ///< m_chunks.front()
  Chunk* m_back = nullptr;         ///< m_chunks.back()
  std::uint32_t m_firstChunk = 0;  ///< its number
  MarkNumber m_keptFrom = 1;
  std::array<std::unique_ptr<TailPage>, kTailPages> m_pages;
  std::unordered_map<SessionId, Tail, SeededHash> m_oddTails;
  std::size_t m_purgeAt = 4096;
};

}  // namespace quorvel
