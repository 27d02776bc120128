// Rules that say when somebody should be told, and what they hold on.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "report/scope.h"
#include "report/table.h"

namespace quorvel {

/// `failures>=5 in 10m by address`: so much of something, within a period, of one address or user, or of all together.
struct AlertRule {
  enum class What : std::uint8_t {
    Failures,              ///< log-ons refused
    SuccessAfterFailures,  ///< log-ons refused in a row, and then one that is not
    Sessions,
    Downloads,
    Uploads,
    Broken,  ///< transfers that failed
    Deletes,
    Renames,
    Bytes,     ///< of files that went over
    SetAside,  ///< share of a log's lines, in hundredths of a percent
  };
  enum class By : std::uint8_t {
    All,
    Address,
    User
  };
  std::string text;  ///< as it was given
  What what = What::Failures;
  bool isMoreThan = false;  ///< > where others say >=
  std::int64_t limit = 0;
  std::int64_t seconds = 0;  ///< 0: in all
  By by = By::All;

  [[nodiscard]] bool isReached(std::int64_t value) const { return isMoreThan ? value > limit : value >= limit; }
};

/// What a rule is made of: failures, `success after failures`, sessions, downloads, uploads, broken, deletes, renames,
/// bytes or set_aside; >= or >; a number (K, M, G, T behind bytes, % behind set_aside); `in` and a time (30s, 10m, 2h,
/// 1d); `by address` or `by user`. `success after failures` is by address unless it says by user, and has no time.
/// Empty where text is no rule; mistake then is a sentence.
[[nodiscard]] std::optional<AlertRule> parseAlertRule(std::string_view text, std::string& mistake);

/// One time that a rule held.
struct Alert {
  std::uint16_t rule = 0;  ///< index
  LogNumber log = 0;
  TextId who = kNoText;    ///< address or user; none: all together
  std::int64_t value = 0;  ///< the most there was at a time
  LogTime first = kNoTime;
  LogTime last = kNoTime;
  RowSource source;  ///< the row that made it hold; none for set_aside
};

/// Rule by rule in the order given. Times at which a rule holds that follow each other without a break are one.
[[nodiscard]] std::vector<Alert> findAlerts(const Activity& activity, const Selection& selection,
                                            std::span<const AlertRule> rules);
/// Columns: rule, who, log, value, percent (in its place where the rule is about a share), first, last.
[[nodiscard]] std::unique_ptr<Table> alertsTable(const Activity& activity, std::span<const AlertRule> rules,
                                                 std::vector<Alert> alerts);

}  // namespace quorvel
