// Which sessions, log-ons and actions a question is about: the one filter that every report and page obeys.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "activity/activity.h"
#include "log/result.h"

namespace quorvel {

/// One word of the scope: what it is looked for in, and whether rows that have it are left out. Texts are UTF-8 and are
/// found anywhere in the field, without case.
struct ScopeWord {
  enum class Field {
    Any,
    User,
    Address,
    Path,
    Outcome
  };  ///< Any: user, address or path
  Field field = Field::Any;
  std::string text;
  bool isExcluded = false;
  friend bool operator==(const ScopeWord&, const ScopeWord&) = default;
};

/// Empty it lets everything through. Words of one field are alternatives, fields are conditions; each excluded word is
/// a condition of its own; each bare word is one too.
struct Scope {
  LogTime from = kNoTime;  ///< kNoTime: from the beginning
  LogTime to = kNoTime;    ///< not included; kNoTime: to the end
  std::vector<ScopeWord> words;

  [[nodiscard]] bool isEmpty() const { return from == kNoTime && to == kNoTime && words.empty(); }
  friend bool operator==(const Scope&, const Scope&) = default;
};

/// What is wrong with a text, and where in it (bytes).
struct ScopeMistake {
  std::string sentence;
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// Reads `user:alice ip:10.0. -word "two words"` into scope.words; keys: user, ip (address), path, outcome. Nothing of
/// it is taken where there is a mistake.
[[nodiscard]] std::optional<ScopeMistake> parseWords(std::string_view text, std::vector<ScopeWord>& words);
/// The text that parseWords() turns into these words.
[[nodiscard]] std::string wordsText(const std::vector<ScopeWord>& words);
/// Reads `2005-06-06`, `2005-06-06T08:00:00`, `today`, `yesterday`, `-7d` (also h, w, m) against now, on the log's
/// clock. As an end (isEnd), a date alone means its whole day.
[[nodiscard]] std::optional<LogTime> parseWhen(std::string_view text, LogTime now, bool isEnd);

/// The rows a scope chooses, in table order: sessions that overlap the period and match, a path by any of their
/// actions; log-ons and actions by their own time, user, address, path and outcome. `outcome:` words look at the
/// outcome of the table they choose from.
struct Selection {
  std::vector<RowNumber> sessions;
  std::vector<RowNumber> logons;
  std::vector<RowNumber> actions;
};
[[nodiscard]] Selection select(const Activity& activity, const Scope& scope);

}  // namespace quorvel
