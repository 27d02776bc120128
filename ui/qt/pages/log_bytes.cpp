#include "ui/qt/pages/log_bytes.h"

#include <utility>

#include "ui/qt/text.h"

namespace quorvel {

std::string logName(const std::filesystem::path& path) {
  return toFileName(path.filename()).toStdString();
}

LogBytes::LogBytes(FileSystem& files, std::filesystem::path path, std::filesystem::path folder)
    : m_files(files), m_path(std::move(path)), m_folder(std::move(folder)) {}

Result<std::shared_ptr<const File>> LogBytes::file(std::string_view name, const std::atomic<bool>& isCancelled) {
  const std::lock_guard lock(m_mutex);
  if (m_logs.empty()) {
    if (const Status status = open(isCancelled); !status.isOk()) return status.error();
  }
  for (const auto& [known, file] : m_logs)
    if (known == name) return file;
  return m_logs.front().second;
}

Status LogBytes::open(const std::atomic<bool>& isCancelled) {
  const UnpackPlace place{m_folder, [&isCancelled](std::uint64_t) { return !isCancelled; }};
  auto logs = openForLooking(m_files, m_path, logName(m_path), place);
  if (!logs.isOk()) return logs.error();
  if (logs.value().empty()) return Error{ErrorCode::FileNotFound, m_path};
  if (isCancelled && logs.value().size() != 1) return Error{ErrorCode::InputPastEnd, m_path};
  for (ReadableLog& log : logs.value())
    m_logs.emplace_back(std::move(log.name), std::move(log.file));
  return {};
}

}  // namespace quorvel
