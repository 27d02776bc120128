// The bytes of the open log, to look at anywhere.
#pragma once

#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "log/log_source.h"

namespace quorvel {

/// Opened when it is first asked for, which takes as long as unpacking where it is packed. For several threads at once.
class LogBytes {
 public:
  /// files must outlive this; folder: for what is unpacked.
  LogBytes(FileSystem& files, std::filesystem::path path, std::filesystem::path folder);

  [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
  /// The log of that name (LogInfo::name), an archive's first one for a name that it does not have. The file holds on
  /// to what it needs. A call that is cancelled while it unpacks leaves a part.
  [[nodiscard]] Result<std::shared_ptr<const File>> file(std::string_view name, const std::atomic<bool>& isCancelled);

 private:
  [[nodiscard]] Status open(const std::atomic<bool>& isCancelled);

  FileSystem& m_files;
  std::filesystem::path m_path;
  std::filesystem::path m_folder;
  std::mutex m_mutex;
  std::vector<std::pair<std::string, std::shared_ptr<const File>>> m_logs;
};

/// A log's name as the tables have it.
[[nodiscard]] std::string logName(const std::filesystem::path& path);

}  // namespace quorvel
