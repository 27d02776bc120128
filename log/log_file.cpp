#include "log/log_file.h"

#include <algorithm>
#include <utility>

namespace quorvel {

LogFile::LogFile(std::unique_ptr<File> file, std::filesystem::path path, LogPosition length)
    : m_file(std::move(file)), m_path(std::move(path)), m_length(length) {}

Result<LogFile> LogFile::open(FileSystem& files, const std::filesystem::path& path) {
  auto file = files.open(path, OpenMode::Read);
  if (!file.isOk()) return file.error();
  const auto size = file.value()->size();
  if (!size.isOk()) return size.error();
  return LogFile(std::move(file.value()), path, static_cast<LogPosition>(size.value()));
}

Result<std::size_t> LogFile::readAt(LogPosition position, std::span<char> buffer) const {
  const LogPosition left = std::max<LogPosition>(0, m_length - position + 1);
  const auto count = std::min(buffer.size(), static_cast<std::size_t>(left));
  return m_file->readAt(static_cast<std::uint64_t>(position - 1), buffer.first(count));
}

}  // namespace quorvel
