#include "report/transfers.h"

#include <algorithm>
#include <tuple>

#include "report/action_fields.h"
#include "report/paths.h"

namespace quorvel {
namespace {

/// Among so many later transfers of files of that name the next attempt is looked for: constant work for each.
constexpr std::size_t kFarthest = 16;

bool isBroken(const ActionRow& action) {
  return action.outcome == Outcome::Failed;
}

/// Which attempts may be for one file: who, which way, and the file's name.
struct Attempt {
  std::uint64_t who;
  TextId name;
  RowNumber row;

  [[nodiscard]] bool isLike(const Attempt& other) const { return who == other.who && name == other.name; }
};

/// Users by name, others by address.
std::uint64_t whoDid(const ActionRow& action) {
  const bool hasUser = action.user != kNoText;
  const std::uint64_t kind = (hasUser ? 2u : 0u) + (action.action == FileAction::Upload ? 1u : 0u);
  return kind << 32 | (hasUser ? action.user : action.address);
}

/// All transfers, those that may be for one file together, in log order.
std::vector<Attempt> attemptsOf(const Activity& activity) {
  TextPool names;
  std::vector<Attempt> attempts;
  for (RowNumber row = 0; row < activity.actions.size(); ++row) {
    const ActionRow& action = activity.actions[row];
    if (action.isTransfer())
      attempts.push_back({whoDid(action), names.add(fileNameOf(activity.text(action.path))), row});
  }
  std::sort(attempts.begin(), attempts.end(), [](const Attempt& a, const Attempt& b) {
    return std::tie(a.who, a.name, a.row) < std::tie(b.who, b.name, b.row);
  });
  return attempts;
}

/// What became of broken transfers later: told by the next attempt, which knows what became of it.
class Later {
 public:
  explicit Later(const Activity& activity) : m_activity(activity), m_attempts(attemptsOf(activity)) {
    m_fates.resize(activity.actions.size());
    for (std::size_t place = m_attempts.size(); place-- > 0;) {
      if (isBroken(actionAt(place))) m_fates[m_attempts[place].row] = fateOf(place);
    }
  }

  void tell(TransferRow& row) const {
    const Fate& fate = m_fates[row.number];
    row.triedAgain = fate.attempts;
    row.isFinished = fate.isFinished;
    row.finished = fate.finished;
  }

 private:
  struct Fate {
    std::uint32_t attempts = 0;
    LogTime finished = kNoTime;
    bool isFinished = false;
  };

  [[nodiscard]] Fate fateOf(std::size_t place) const {
    const std::size_t end = std::min(m_attempts.size(), place + 1 + kFarthest);
    const std::string path = pathOf(actionAt(place));
    for (std::size_t next = place + 1; next < end && m_attempts[next].isLike(m_attempts[place]); ++next) {
      const ActionRow& action = actionAt(next);
      if (!isSamePath(path, pathOf(action))) continue;
      if (action.outcome == Outcome::Ok) return {1, action.time, true};
      Fate fate = m_fates[m_attempts[next].row];
      ++fate.attempts;
      return fate;
    }
    return {};
  }

  [[nodiscard]] const ActionRow& actionAt(std::size_t place) const { return m_activity.actions[m_attempts[place].row]; }
  [[nodiscard]] std::string pathOf(const ActionRow& action) const {
    return fullPath(m_activity.text(action.folder), m_activity.text(action.path));
  }

  const Activity& m_activity;
  std::vector<Attempt> m_attempts;
  std::vector<Fate> m_fates;  ///< by action
};

Cell speedOf(const CellMaker&, const TransferRow& row) {
  return row.seconds > 0 ? CellMaker::bytes(row.bytes < 0 ? -1 : row.bytes / row.seconds) : Cell{};
}

auto transferFields() {
  const auto actions = actionFields<TransferRow>();
  std::vector<Field<TransferRow>> fields(actions.begin(), actions.end());
  fields.push_back({{"speed", "Bytes a second", CellKind::Bytes, true}, speedOf});
  fields.push_back(countField<TransferRow, &TransferRow::triedAgain>("tried_again", "Tried again"));
  fields.push_back({{"finished", "Finished later", CellKind::Flag},
                    [](const CellMaker&, const TransferRow& row) { return CellMaker::flag(row.isFinished); }});
  fields.push_back(timeField<TransferRow, &TransferRow::finished>("finished_at", "Finished at"));
  return fields;
}

}  // namespace

std::vector<TransferRow> transfers(const Activity& activity, const std::vector<RowNumber>& actions,
                                   TransferChoice choice) {
  std::vector<TransferRow> rows;
  const Later later(activity);
  for (const RowNumber number : actions) {
    const ActionRow& action = activity.actions[number];
    if (!action.isTransfer() || (choice == TransferChoice::Broken && !isBroken(action))) continue;
    TransferRow& row = rows.emplace_back();
    static_cast<ActionRow&>(row) = action;
    row.number = number;
    if (isBroken(action)) later.tell(row);
  }
  return rows;
}

std::unique_ptr<Table> transfersTable(const Activity& activity, const std::vector<RowNumber>& actions,
                                      TransferChoice choice) {
  const auto source = [](const TransferRow& row, RowNumber) { return RowSource{RowSource::Kind::Action, row.number}; };
  return std::make_unique<FieldTable<TransferRow>>("transfers", activity, transferFields(), source,
                                                   transfers(activity, actions, choice));
}

}  // namespace quorvel
