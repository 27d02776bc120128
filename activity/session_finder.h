// Which session a line belongs to, by the rule of its format.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "activity/open_sessions.h"
#include "activity/texts.h"
#include "grammar/event.h"
#include "grammar/grammar.h"

namespace quorvel {

/// Constant work for each line. Sessions are found from the last forget() on only.
class SessionFinder {
 public:
  SessionFinder(const GrammarTraits& traits, const OpenSessions& sessions, const TextPool& texts);

  /// The session that a line belongs to; kNoRow where it begins a new one.
  [[nodiscard]] RowNumber find(const Event& event);
  /// A line belongs to that session, which find() answered or which began with it.
  void belongs(const Event& event, RowNumber session);
  /// The sessions so far are over: the server started, or another log begins.
  void forget();
  /// Whether a line belongs to any session, as far as it tells one.
  [[nodiscard]] bool hasSession(const Event& event) const;
  /// Whether the session of a line is put together by rule.
  [[nodiscard]] bool isInferred(const Event& event) const { return ruleFor(event) != SessionRule::ByKey; }

 private:
  /// Open addressing with a seeded hash.
  struct Slot {
    RowNumber session = kNoRow;
    std::uint64_t hash = 0;  ///< of all its bits: two texts with the same one are not to be found
  };

  /// A format without session numbers may have them all the same, and the reverse: it depends on the server's settings.
  [[nodiscard]] SessionRule ruleFor(const Event& event) const;
  [[nodiscard]] RowNumber findKey(const Event& event);
  [[nodiscard]] RowNumber findUserAndAddress(const Event& event);
  [[nodiscard]] bool goesOn(RowNumber session, const Event& event) const;
  [[nodiscard]] RowNumber findNeighbours(const Event& event) const;
  [[nodiscard]] RowNumber current(RowNumber session) const { return session >= m_first ? session : kNoRow; }

  [[nodiscard]] RowNumber* shortNumber(std::string_view key);
  [[nodiscard]] std::uint64_t hashOf(std::string_view key) const;
  [[nodiscard]] std::uint64_t hashOf(std::string_view user, std::string_view address) const;
  [[nodiscard]] Slot& slotOf(std::uint64_t hash);
  void grow();

  const SessionRule m_rule;
  const int m_neighbours;
  const OpenSessions& m_sessions;
  const TextPool& m_texts;
  RowNumber m_first = 0;  ///< sessions before it are over

  /// By number of digits, then by number: session + 1. Most servers count their sessions.
  std::array<std::vector<RowNumber>, 8> m_numbers;
  std::vector<Slot> m_slots;  ///< a power of two
  std::size_t m_used = 0;
  std::uint64_t m_seed;
};

}  // namespace quorvel
