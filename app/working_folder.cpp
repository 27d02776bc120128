#include "app/working_folder.h"

#include <random>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace quorvel {
namespace {

constexpr const char* kNameStart = "working-";

/// Nothing else is ever deleted: whatever else lies in the folder is not ours.
void deleteWorkingFiles(const std::filesystem::path& folder) {
  std::error_code ignored;
  for (const char* const name : {"users.qva", "filter.qva"})
    std::filesystem::remove(folder / name, ignored);
}

/// The lock goes last, so that nobody takes the folder meanwhile; but some systems delete no folder that is locked.
void deleteWorkingFolder(const std::filesystem::path& folder, std::unique_ptr<FolderLock> lock) {
  std::error_code ignored;
  deleteWorkingFiles(folder);
  if (std::filesystem::remove(folder, ignored)) return;
  lock.reset();
  std::filesystem::remove(folder, ignored);
}

/// The folders of processes that were killed: nobody locks them.
void deleteLeftFolders(const std::filesystem::path& programFolder) {
  std::error_code error;
  std::vector<std::filesystem::path> left;
  for (std::filesystem::directory_iterator entry(programFolder, error), end; !error && entry != end;
       entry.increment(error)) {
    const bool isOurs = entry->path().filename().native().starts_with(std::filesystem::path(kNameStart).native());
    if (isOurs && entry->symlink_status(error).type() == std::filesystem::file_type::directory) {
      left.push_back(entry->path());
    }
  }
  for (const auto& folder : left) {
    std::unique_ptr<FolderLock> lock;
    if (FolderLock::take(folder, lock) == FolderLock::Outcome::Taken) deleteWorkingFolder(folder, std::move(lock));
  }
}

}  // namespace

WorkingFolder::WorkingFolder(const std::filesystem::path& programFolder) : m_path(programFolder) {
  using enum FolderLock::Outcome;
  const auto outcome = FolderLock::take(programFolder, m_lock);
  std::error_code error;
  if (outcome == Impossible && !std::filesystem::is_directory(programFolder, error)) return;
  deleteLeftFolders(programFolder);
  if (outcome == Taken) {
    deleteWorkingFiles(programFolder);
  } else {
    makeOwnFolder(programFolder);
  }
}

WorkingFolder::~WorkingFolder() {
  if (m_isOwn) deleteWorkingFolder(m_path, std::move(m_lock));
}

void WorkingFolder::makeOwnFolder(const std::filesystem::path& programFolder) {
  std::random_device random;
  constexpr int kMostTries = 10;  // another process may take a folder that nobody locks yet for one that was left
  for (int left = kMostTries; left > 0; --left) {
    m_path = programFolder / (kNameStart + std::to_string(random()) + std::to_string(random()));
    std::error_code error;
    if (!std::filesystem::create_directory(m_path, error)) continue;
    std::filesystem::permissions(m_path, std::filesystem::perms::owner_all, error);
    const auto outcome = FolderLock::take(m_path, m_lock);
    m_isOwn = outcome != FolderLock::Outcome::InUse && std::filesystem::exists(m_path, error);
    if (m_isOwn) return;
  }
}

}  // namespace quorvel
