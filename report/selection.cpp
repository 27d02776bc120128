// Chooses rows. Every text of a scope is looked for once in each distinct text of the log, however many rows have it.
#include <algorithm>
#include <array>

#include "log/text.h"
#include "report/fold.h"
#include "report/paths.h"
#include "report/raw_tables.h"
#include "report/scope.h"

namespace quorvel {
namespace {

/// Whether texts of a log hold a text, found out when it is first asked for and remembered.
class TextTest {
 public:
  TextTest(const Activity& activity, std::string_view wanted)
      : m_activity(activity), m_wanted(foldUtf8(wanted)), m_isAscii(isAscii(wanted)) {}

  bool holds(TextId id, TextEncoding encoding) {
    if (id == kNoText) return false;
    auto& known = m_known[static_cast<std::size_t>(encoding)];
    if (known.empty()) known.resize(m_activity.texts.size());
    std::uint8_t& state = known[id];
    if (state == 0) state = isIn(m_activity.text(id), encoding) ? 2 : 1;
    return state == 2;
  }
  /// Of a text of ours.
  [[nodiscard]] bool isIn(std::string_view name) const { return containsFolded(name, m_wanted); }

 private:
  [[nodiscard]] bool isIn(std::string_view text, TextEncoding encoding) const {
    if (isAscii(text)) return m_isAscii && containsFolded(text, m_wanted);
    return foldUtf8(utf8Of(text, encoding)).find(m_wanted) != std::string::npos;
  }

  const Activity& m_activity;
  std::string m_wanted;
  bool m_isAscii;
  std::array<std::vector<std::uint8_t>, 2> m_known;  ///< by encoding and TextId: 0 not yet, 1 no, 2 yes
};

using Field = ScopeWord::Field;

/// What words look at in one row.
struct Subject {
  TextId user = kNoText;
  TextId address = kNoText;
  TextEncoding encoding = TextEncoding::Utf8;
  std::string_view outcome;
  const ActionRow* action = nullptr;      ///< whose path counts
  std::optional<RowNumber> session = {};  ///< whose actions' paths count
};

/// Words of which one must be found, or none.
struct Condition {
  Field field = Field::Any;
  bool isExcluded = false;
  std::vector<TextTest> tests;
  std::vector<bool> sessions;  ///< by number: one of its actions' paths holds the text; filled where it is asked for
};

class Chooser {
 public:
  Chooser(const Activity& activity, const Scope& scope) : m_activity(activity), m_scope(scope) {
    for (const ScopeWord& word : scope.words)
      conditionOf(word).tests.emplace_back(activity, word.text);
  }

  Selection choose() {
    markSessions();
    Selection chosen;
    for (RowNumber row = 0; row < m_activity.sessions.size(); ++row) {
      if (takes(m_activity.sessions[row], row)) chosen.sessions.push_back(row);
    }
    for (RowNumber row = 0; row < m_activity.logons.size(); ++row) {
      if (takes(m_activity.logons[row])) chosen.logons.push_back(row);
    }
    for (RowNumber row = 0; row < m_activity.actions.size(); ++row) {
      if (takes(m_activity.actions[row])) chosen.actions.push_back(row);
    }
    return chosen;
  }

 private:
  /// Where a word belongs: to the others of its field, or to a condition of its own.
  Condition& conditionOf(const ScopeWord& word) {
    const bool isAlternative = !word.isExcluded && word.field != Field::Any;
    const auto same = std::find_if(m_conditions.begin(), m_conditions.end(),
                                   [&word](const Condition& c) { return !c.isExcluded && c.field == word.field; });
    if (isAlternative && same != m_conditions.end()) return *same;
    Condition& added = m_conditions.emplace_back();
    added.field = word.field;
    added.isExcluded = word.isExcluded;
    return added;
  }

  /// One pass over the actions for all conditions that ask a session for its paths.
  void markSessions() {
    std::vector<Condition*> wanted;
    for (Condition& condition : m_conditions) {
      if (condition.field == Field::Path || condition.field == Field::Any) wanted.push_back(&condition);
    }
    if (wanted.empty()) return;
    for (Condition* const condition : wanted)
      condition->sessions.resize(m_activity.sessions.size());
    for (RowNumber row = 0; row < m_activity.actions.size(); ++row) {
      const ActionRow& action = m_activity.actions[row];
      for (Condition* const condition : wanted) {
        if (!condition->sessions[action.session] && holdsPath(*condition, action))
          condition->sessions[action.session] = true;
      }
    }
  }

  bool takes(const SessionRow& session, RowNumber row) {
    const LogTime begin = session.first != kNoTime ? session.first : session.ended;
    const LogTime end = session.ended != kNoTime ? session.ended : session.first;
    if (m_scope.from != kNoTime && (end == kNoTime || end < m_scope.from)) return false;
    if (m_scope.to != kNoTime && (begin == kNoTime || begin >= m_scope.to)) return false;
    return fits(
        {session.user, session.address, encodingOf(session.log), logonResultName(session.outcome), nullptr, row});
  }
  bool takes(const LogonRow& logon) {
    return isInPeriod(logon.time) &&
           fits({logon.user, logon.address, encodingOf(logon.log), logon.isOk() ? "ok" : "failed"});
  }
  bool takes(const ActionRow& action) {
    constexpr std::array<std::string_view, 3> kOutcomes = {"", "ok", "failed"};
    return isInPeriod(action.time) && fits({action.user, action.address, encodingOf(action.log),
                                            kOutcomes[static_cast<std::size_t>(action.outcome)], &action});
  }

  [[nodiscard]] bool isInPeriod(LogTime time) const {
    if (m_scope.from == kNoTime && m_scope.to == kNoTime) return true;
    return time != kNoTime && time >= m_scope.from && (m_scope.to == kNoTime || time < m_scope.to);
  }

  bool fits(const Subject& subject) {
    return std::all_of(m_conditions.begin(), m_conditions.end(),
                       [&](Condition& condition) { return holds(condition, subject) != condition.isExcluded; });
  }

  bool holds(Condition& condition, const Subject& subject) {
    switch (condition.field) {
      case Field::User:
        return holdsText(condition, subject.user, subject.encoding);
      case Field::Address:
        return holdsText(condition, subject.address, subject.encoding);
      case Field::Outcome:
        return std::any_of(condition.tests.begin(), condition.tests.end(),
                           [&](const TextTest& test) { return test.isIn(subject.outcome); });
      case Field::Any:
        if (holdsText(condition, subject.user, subject.encoding) ||
            holdsText(condition, subject.address, subject.encoding))
          return true;
        break;
      case Field::Path:
        break;
    }
    if (subject.session) return condition.sessions[*subject.session];
    return subject.action != nullptr && holdsPath(condition, *subject.action);
  }

  static bool holdsText(Condition& condition, TextId text, TextEncoding encoding) {
    return std::any_of(condition.tests.begin(), condition.tests.end(),
                       [&](TextTest& test) { return test.holds(text, encoding); });
  }
  /// A folder counts as far as the path lies in it.
  bool holdsPath(Condition& condition, const ActionRow& action) {
    const TextEncoding encoding = encodingOf(action.log);
    return holdsText(condition, action.path, encoding) || holdsText(condition, action.toPath, encoding) ||
           (action.folder != kNoText && !isAbsolutePath(m_activity.text(action.path)) &&
            holdsText(condition, action.folder, encoding));
  }

  [[nodiscard]] TextEncoding encodingOf(LogNumber log) const { return m_activity.logs[log].encoding; }

  const Activity& m_activity;
  const Scope& m_scope;
  std::vector<Condition> m_conditions;
};

}  // namespace

Selection select(const Activity& activity, const Scope& scope) {
  if (scope.isEmpty())
    return {allRows(activity.sessions.size()), allRows(activity.logons.size()), allRows(activity.actions.size())};
  return Chooser(activity, scope).choose();
}

}  // namespace quorvel
