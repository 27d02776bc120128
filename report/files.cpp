#include "report/files.h"

#include <algorithm>
#include <set>

#include "report/field_table.h"
#include "report/paths.h"

namespace quorvel {
namespace {

bool isRename(const ActionRow& action) {
  return action.action == FileAction::Rename && action.outcome == Outcome::Ok && action.toPath != kNoText;
}

/// Names that are looked for besides those which the scope asks for: where a file went, where it came from.
class Trail {
 public:
  explicit Trail(const Activity& activity) : m_activity(activity) {}

  [[nodiscard]] bool isEmpty() const { return m_paths.empty(); }
  [[nodiscard]] bool has(const ActionRow& action, TextId path) const {
    return !m_paths.empty() && path != kNoText && m_paths.contains(nameOf(action, path));
  }
  void add(const ActionRow& action, TextId path) { m_paths.insert(nameOf(action, path)); }
  void drop(const ActionRow& action, TextId path) { m_paths.erase(nameOf(action, path)); }

 private:
  [[nodiscard]] std::string nameOf(const ActionRow& action, TextId path) const {
    return fullPath(m_activity.text(action.folder), m_activity.text(path));
  }

  const Activity& m_activity;
  std::set<std::string> m_paths;
};

/// Marks what happened to files after they got other names than those asked for.
void followForward(const Activity& activity, const std::vector<bool>& asked, std::vector<bool>& marked) {
  Trail trail(activity);
  for (RowNumber row = 0; row < marked.size(); ++row) {
    const ActionRow& action = activity.actions[row];
    const bool isFollowed = trail.has(action, action.path);
    if (isFollowed) marked[row] = true;
    const bool goes = isRename(action) || (action.action == FileAction::Delete && action.outcome == Outcome::Ok);
    if (isFollowed && goes) trail.drop(action, action.path);
    if ((isFollowed || asked[row]) && isRename(action)) trail.add(action, action.toPath);
  }
}

/// Marks what happened to files before they got the names asked for.
void followBackward(const Activity& activity, const std::vector<bool>& asked, std::vector<bool>& marked) {
  Trail trail(activity);
  for (auto row = static_cast<RowNumber>(marked.size()); row-- > 0;) {
    const ActionRow& action = activity.actions[row];
    const bool isOrigin = isRename(action) && (asked[row] || trail.has(action, action.toPath));
    if (isRename(action) && trail.has(action, action.toPath)) {
      marked[row] = true;
      trail.drop(action, action.toPath);
    }
    if (trail.has(action, action.path)) {
      const bool isAnother = action.action == FileAction::Delete && action.outcome == Outcome::Ok;
      if (isAnother) {
        trail.drop(action, action.path);
      } else {
        marked[row] = true;
      }
    }
    if (isOrigin) trail.add(action, action.path);
  }
}

std::vector<bool> marksOf(const std::vector<RowNumber>& rows, std::size_t count) {
  std::vector<bool> marks(count);
  for (const RowNumber row : rows)
    marks[row] = true;
  return marks;
}

bool asksForPath(const ScopeWord& word) {
  return word.field == ScopeWord::Field::Path && !word.isExcluded;
}

/// Sums of one folder.
struct FolderRow {
  TextId folder = kNoText;
  LogNumber log = 0;
  std::uint32_t actions = 0;
  std::uint32_t downloads = 0;
  std::uint32_t uploads = 0;
  std::uint32_t failed = 0;
  std::uint32_t deletes = 0;
  std::uint32_t renames = 0;
  std::int64_t downloadBytes = 0;
  std::int64_t uploadBytes = 0;
  LogTime last = kNoTime;

  void take(const ActionRow& action) {
    ++actions;
    last = std::max(last, action.time);
    if (action.outcome == Outcome::Failed) ++failed;
    if (action.outcome != Outcome::Ok) return;
    const std::int64_t bytes = std::max(action.bytes, std::int64_t{0});
    switch (action.action) {
      case FileAction::Download:
        ++downloads;
        downloadBytes += bytes;
        return;
      case FileAction::Upload:
        ++uploads;
        uploadBytes += bytes;
        return;
      case FileAction::Delete:
        ++deletes;
        return;
      case FileAction::Rename:
        ++renames;
        return;
      default:
        return;
    }
  }
};

constexpr auto kFolderFields = std::to_array<Field<FolderRow>>({
    textField<FolderRow, &FolderRow::folder>("folder", "Folder"),
    countField<FolderRow, &FolderRow::actions>("actions", "Actions"),
    countField<FolderRow, &FolderRow::downloads>("downloads", "Downloads"),
    bytesField<FolderRow, &FolderRow::downloadBytes>("download_bytes", "Downloaded"),
    countField<FolderRow, &FolderRow::uploads>("uploads", "Uploads"),
    bytesField<FolderRow, &FolderRow::uploadBytes>("upload_bytes", "Uploaded"),
    countField<FolderRow, &FolderRow::failed>("failed", "Failed"),
    countField<FolderRow, &FolderRow::deletes>("deletes", "Deletes"),
    countField<FolderRow, &FolderRow::renames>("renames", "Renames"),
    timeField<FolderRow, &FolderRow::last>("last", "Last"),
});

}  // namespace

std::vector<RowNumber> fileActions(const Activity& activity, const Scope& scope) {
  std::vector<RowNumber> chosen = select(activity, scope).actions;
  if (std::none_of(scope.words.begin(), scope.words.end(), asksForPath)) return chosen;
  Scope names;
  Scope others = scope;
  std::copy_if(scope.words.begin(), scope.words.end(), std::back_inserter(names.words), asksForPath);
  std::erase_if(others.words, asksForPath);
  const std::size_t count = activity.actions.size();
  const std::vector<bool> asked = marksOf(select(activity, names).actions, count);
  std::vector<bool> marked = asked;
  followForward(activity, asked, marked);
  followBackward(activity, asked, marked);
  chosen = select(activity, others).actions;
  std::erase_if(chosen, [&marked](RowNumber row) { return !marked[row]; });
  return chosen;
}

std::unique_ptr<Table> foldersTable(const Activity& activity, const std::vector<RowNumber>& actions) {
  TextPool texts;
  std::vector<FolderRow> rows(1);  // by TextId
  for (const RowNumber number : actions) {
    const ActionRow& action = activity.actions[number];
    const TextId folder = texts.add(folderOf(activity, action));
    if (folder >= rows.size()) rows.resize(folder + std::size_t{1});
    FolderRow& row = rows[folder];
    if (row.actions == 0) row.log = action.log;
    row.folder = folder;
    row.take(action);
  }
  std::erase_if(rows, [](const FolderRow& row) { return row.actions == 0; });
  std::stable_sort(rows.begin(), rows.end(),
                   [](const FolderRow& a, const FolderRow& b) { return a.actions > b.actions; });
  Activity shown;
  shown.logs = activity.logs;
  shown.texts = texts.snapshot();
  return std::make_unique<FieldTable<FolderRow>>("folders", shown, kFolderFields, nullptr, std::move(rows));
}

}  // namespace quorvel
