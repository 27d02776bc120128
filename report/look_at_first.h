// What an administrator should look at first.
#pragma once

#include <string>
#include <vector>

#include "report/scope.h"
#include "report/thresholds.h"

namespace quorvel {

enum class Question : std::uint8_t {
  Overview,
  Sessions,
  Logins,
  Files,
  Transfers,
  Traffic,
  Check
};

struct Finding {
  bool isUrgent = false;
  std::string sentence;                    ///< UTF-8, for people: "198.51.100.9 got in as admin after 4 refusals"
  Question question = Question::Sessions;  ///< who tells more
  std::vector<ScopeWord> words;            ///< to put into the scope there; may be empty
};

/// At most kMostFindings, worst first: who got in after many refusals, who guessed passwords, who deleted in bulk,
/// which transfers never finished, what was set aside.
inline constexpr std::size_t kMostFindings = 7;
[[nodiscard]] std::vector<Finding> lookAtFirst(const Activity& activity, const Selection& selection,
                                               const Thresholds& thresholds);
/// What was looked for, one sentence, for when nothing was found.
[[nodiscard]] std::string lookedFor(const Thresholds& thresholds);

}  // namespace quorvel
