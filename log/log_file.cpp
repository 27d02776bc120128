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
  LogFile log(std::move(file.value()), path, static_cast<LogPosition>(size.value()));
  const Status found = log.findLineEnd();
  if (!found.isOk()) return found.error();
  return Result<LogFile>(std::move(log));
}

Result<std::size_t> LogFile::readAt(LogPosition position, std::span<char> buffer) const {
  const LogPosition left = std::max<LogPosition>(0, m_length - position + 1);
  const auto count = std::min(buffer.size(), static_cast<std::size_t>(left));
  return m_file->readAt(static_cast<std::uint64_t>(position - 1), buffer.first(count));
}

/// Decides by the first line end; where the first megabytes have none, as in a log of one line, by the first one that
/// is met by looking at a piece here and there.
Status LogFile::findLineEnd() {
  constexpr LogPosition kPiece = 64 * 1024;
  constexpr LogPosition kReadThrough = 64 * kPiece;
  std::string piece(kPiece, '\0');
  char last = '\n';
  for (LogPosition at = 1; at <= m_length; at = at <= kReadThrough ? at + kPiece : 2 * at) {
    const auto count = readAt(at, piece);
    if (!count.isOk()) return count.error();
    if (count.value() == 0) break;
    const std::string_view text = std::string_view(piece).substr(0, count.value());
    // A piece that starts with LF may have been cut behind a CR: the next line tells.
    const std::size_t from = last == '\n' && text.front() == '\n' ? 1 : 0;
    if (const auto lf = text.find('\n', from); lf != std::string_view::npos) {
      if ((lf == 0 ? last : text[lf - 1]) != '\r') m_lineEnd = '\n';
      break;
    }
    last = at < kReadThrough ? text.back() : '\n';
  }
  return {};
}

}  // namespace quorvel
