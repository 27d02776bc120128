#include "report/look_at_first.h"

#include <algorithm>
#include <span>
#include <tuple>

#include "report/cell_text.h"
#include "report/check.h"
#include "report/logins.h"
#include "report/transfers.h"

namespace quorvel {
namespace {

/// Deletes of one user within any ten minutes that stand out.
constexpr std::size_t kManyDeletes = 20;
constexpr LogTime kTenMinutes = 600;
class Finder {
 public:
  Finder(const Activity& activity, const Selection& selection, const Thresholds& thresholds)
      : m_activity(activity), m_selection(selection), m_thresholds(thresholds) {}

  std::vector<Finding> find() {
    findLogins();
    findDeletes();
    findTransfers();
    findSetAside();
    return std::move(m_findings);
  }

 private:
  void add(bool isUrgent, std::string sentence, Question question, std::vector<ScopeWord> words = {}) {
    m_findings.push_back({isUrgent, std::move(sentence), question, std::move(words)});
  }

  void findLogins() {
    const std::vector<LoginRow> rows = logins(m_activity, m_selection.logons, LoginsBy::Address, m_thresholds);
    const auto gotInEnd = std::find_if(rows.begin(), rows.end(), [](const LoginRow& row) { return row.rank < 2; });
    const auto guessedEnd = std::find_if(gotInEnd, rows.end(), [](const LoginRow& row) { return row.rank < 1; });
    tellLogins({rows.begin(), gotInEnd}, " more addresses got in after refusals");
    tellLogins({gotInEnd, guessedEnd}, " more addresses were refused often in a short time");
  }

  /// The worst one and the second; or the worst one and how many more.
  void tellLogins(std::span<const LoginRow> rows, std::string_view more) {
    if (rows.empty()) return;
    tellLogin(rows.front());
    if (rows.size() == 2) return tellLogin(rows.back());
    if (rows.size() > 2)
      add(true, readableCount(static_cast<std::int64_t>(rows.size()) - 1).append(more), Question::Logins);
  }

  void tellLogin(const LoginRow& row) {
    const std::string who = row.who == kNoText ? "Somebody" : shown(row.who, row.log);
    std::string sentence =
        row.rank == 2
            ? who + " got in as " + shown(row.gotInAs, row.log) + " after " + countOf(row.gotInAfter, "refusal")
            : who + " was refused " + countOf(row.failures, "time") + ", trying " + countOf(row.names, "name");
    add(true, std::move(sentence), Question::Logins, wordsFor(ScopeWord::Field::Address, row.who, row.log));
  }

  void findDeletes() {
    const auto deletes = deletesByUser();
    std::size_t users = 0;
    std::size_t most = 0;
    RowNumber worst = 0;
    for (auto begin = deletes.begin(); begin != deletes.end();) {
      const TextId user = m_activity.actions[*begin].user;
      const auto end =
          std::find_if(begin, deletes.end(), [&](RowNumber row) { return m_activity.actions[row].user != user; });
      const std::size_t count = mostInTenMinutes({begin, end});
      if (count >= kManyDeletes) ++users;
      if (count > most) {
        most = count;
        worst = *begin;
      }
      begin = end;
    }
    if (users == 0) return;
    const ActionRow& action = m_activity.actions[worst];
    std::string sentence = (action.user == kNoText ? "Somebody" : shown(action.user, action.log)) + " deleted " +
                           countOf(most, "file") + " within ten minutes";
    if (users > 1)
      sentence += ", and " + countOf(users - 1, "other user") + " as many as " + std::to_string(kManyDeletes);
    add(true, std::move(sentence), Question::Files, wordsFor(ScopeWord::Field::User, action.user, action.log));
  }

  /// Files deleted, user by user, each in the order of time.
  [[nodiscard]] std::vector<RowNumber> deletesByUser() const {
    std::vector<RowNumber> rows;
    for (const RowNumber row : m_selection.actions) {
      const ActionRow& action = m_activity.actions[row];
      if (action.action == FileAction::Delete && action.outcome == Outcome::Ok && action.time != kNoTime)
        rows.push_back(row);
    }
    std::stable_sort(rows.begin(), rows.end(), [this](RowNumber a, RowNumber b) {
      const ActionRow& x = m_activity.actions[a];
      const ActionRow& y = m_activity.actions[b];
      return std::tie(x.user, x.time) < std::tie(y.user, y.time);
    });
    return rows;
  }

  [[nodiscard]] std::size_t mostInTenMinutes(std::span<const RowNumber> rows) const {
    std::size_t most = 0;
    std::size_t begin = 0;
    for (std::size_t end = 0; end < rows.size(); ++end) {
      while (m_activity.actions[rows[end]].time - m_activity.actions[rows[begin]].time >= kTenMinutes)
        ++begin;
      most = std::max(most, end - begin + 1);
    }
    return most;
  }

  void findTransfers() {
    const auto rows = transfers(m_activity, m_selection.actions, TransferChoice::Broken);
    const auto count = std::count_if(rows.begin(), rows.end(), [](const TransferRow& row) { return !row.isFinished; });
    if (count > 0)
      add(true, countOf(static_cast<std::uint64_t>(count), "transfer") + " never finished", Question::Transfers);
  }

  void findSetAside() {
    std::uint64_t shapes = 0;
    std::uint64_t lines = 0;
    for (const LogInfo& log : m_activity.logs) {
      shapes += log.ledger.shapes.size();
      lines += log.ledger.setAside.lines;
    }
    if (lines > 0)
      add(false, countOf(shapes, "shape") + " of lines set aside, " + countOf(lines, "line"), Question::Check);
  }

  [[nodiscard]] std::string shown(TextId text, LogNumber log) const {
    return withoutControls(utf8Of(m_activity.text(text), m_activity.logs[log].encoding));
  }
  [[nodiscard]] std::vector<ScopeWord> wordsFor(ScopeWord::Field field, TextId text, LogNumber log) const {
    if (text == kNoText) return {};
    return {{field, utf8Of(m_activity.text(text), m_activity.logs[log].encoding), false}};
  }

  const Activity& m_activity;
  const Selection& m_selection;
  const Thresholds& m_thresholds;
  std::vector<Finding> m_findings;
};

}  // namespace

std::vector<Finding> lookAtFirst(const Activity& activity, const Selection& selection, const Thresholds& thresholds) {
  return Finder(activity, selection, thresholds).find();
}

std::string lookedFor(const Thresholds& thresholds) {
  std::string sentence = "Looked for: ";
  const auto often = [&sentence](std::uint32_t count, std::string_view when) {
    if (count > 0)
      sentence.append(std::to_string(count)).append(" refused log-ons of an address ").append(when).append(", ");
  };
  often(thresholds.beforeSuccess, "before it got in");
  often(thresholds.inTenMinutes, "within ten minutes");
  often(thresholds.inTwoMinutes, "within two");
  return sentence + std::to_string(kManyDeletes) +
         " files deleted by a user within ten minutes, transfers that never finished, lines set aside.";
}

}  // namespace quorvel
