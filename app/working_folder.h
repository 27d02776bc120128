// Where one process keeps its working files, so that two in one program folder never touch each other's.
#pragma once

#include <filesystem>
#include <memory>

namespace quorvel {

/// Keeps other processes out of a folder until it is destroyed, or the process ends in any way. One source per system.
class FolderLock {
 public:
  virtual ~FolderLock() = default;

  enum class Outcome {
    Taken,
    InUse,       ///< by another process
    Impossible,  ///< there is no such folder, or the system cannot lock it
  };
  /// Does not wait. lock is set where the outcome is Taken.
  [[nodiscard]] static Outcome take(const std::filesystem::path& folder, std::unique_ptr<FolderLock>& lock);
};

class WorkingFolder {
 public:
  /// The first process in a program folder gets the folder itself, any other one a folder of its own in it, which only
  /// this user can read. What processes that were killed left there, and their folders, are deleted first. Where the
  /// folder of its own cannot be made, path() is one that does not exist: commands then tell that they cannot write.
  explicit WorkingFolder(const std::filesystem::path& programFolder);
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;
  /// Deletes the folder of its own.
  ~WorkingFolder();

  [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

 private:
  void makeOwnFolder(const std::filesystem::path& programFolder);

  std::filesystem::path m_path;
  std::unique_ptr<FolderLock> m_lock;
  bool m_isOwn = false;
};

}  // namespace quorvel
