#include "log/following_source.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>
#include <vector>

namespace quorvel {

bool haveSameHead(std::string_view a, std::string_view b) {
  const std::size_t size = std::min(a.size(), b.size());
  return size > 0 && a.substr(0, size) == b.substr(0, size);
}

Result<std::string> headOf(LogSource& source) {
  std::string head(kHeadBytes, '\0');
  std::size_t count = 0;
  while (count < head.size()) {
    const auto more = source.read(std::span(head).subspan(count));
    if (!more.isOk()) return more.error();
    if (more.value() == 0) break;
    count += more.value();
  }
  head.resize(count);
  if (!source.rewind() && count > 0)
    return Error{ErrorCode::PathFileAccess, {}, source.name() + " cannot be read again"};
  return head;
}

Result<std::unique_ptr<FollowingSource>> FollowingSource::open(FileSystem& files, const std::filesystem::path& path,
                                                               const std::string& name) {
  constexpr int kMostTries = 10;
  for (int i = 0;; ++i) {
    const auto before = files.stamp(path);
    auto file = files.open(path, OpenMode::Read);
    if (!file.isOk()) return file.error();
    const auto after = files.stamp(path);
    const bool isSame = before.isOk() && after.isOk() && before.value().device == after.value().device &&
                        before.value().number == after.value().number;
    if (!isSame && i < kMostTries) continue;  // renamed meanwhile: the numbers may be another file's
    std::unique_ptr<FollowingSource> source(new FollowingSource(files, path, name));
    source->m_file = std::move(file.value());
    if (isSame) {
      source->m_place.device = after.value().device;
      source->m_place.number = after.value().number;
      const auto changed = std::chrono::file_clock::to_sys(after.value().changed).time_since_epoch();
      source->m_changedTime = std::chrono::duration_cast<std::chrono::seconds>(changed).count();
    }
    return source;
  }
}

FollowingSource::FollowingSource(FileSystem& files, std::filesystem::path path, std::string name)
    : m_files(&files), m_path(std::move(path)), m_name(std::move(name)) {}

FollowingSource::FollowingSource(std::unique_ptr<LogSource> finished)
    : m_name(finished->name()), m_changedTime(finished->changedTime()), m_source(std::move(finished)) {}

std::string FollowingSource::note() const {
  const std::string inner = m_source ? m_source->note() : std::string();
  if (m_note.empty() || inner.empty()) return m_note + inner;
  return m_note + " " + inner;
}

Result<std::size_t> FollowingSource::read(std::span<char> buffer) {
  buffer = buffer.first(std::min<std::uint64_t>(buffer.size(), m_limit - std::min(m_limit, m_place.offset)));
  auto count = m_source ? m_source->read(buffer) : m_file->readAt(m_place.offset, buffer);
  if (!count.isOk()) return count;
  if (!m_source && count.value() > 0 && m_place.offset > 0 && isTruncated()) return std::size_t{0};
  const std::uint64_t known = m_place.head.size() - std::min<std::uint64_t>(m_place.head.size(), m_place.offset);
  if (m_place.offset <= m_place.head.size() && known < count.value())
    m_place.head.append(buffer.data() + known, std::min(count.value() - known, kHeadBytes - m_place.head.size()));
  m_place.offset += count.value();
  return count;
}

bool FollowingSource::rewind() {
  if (m_source && !m_source->rewind()) return false;
  m_place.offset = 0;
  return true;
}

FollowingSource::Change FollowingSource::look() const {
  if (m_files == nullptr || m_source) return Change::None;
  if (isTruncated()) return Change::Truncated;
  const auto named = m_files->stamp(m_path);
  if (!named.isOk() || named.value().size == 0) return Change::None;
  const bool isSame = named.value().device == m_place.device && named.value().number == m_place.number;
  return isSame ? Change::None : Change::Replaced;
}

bool FollowingSource::goOnIn(std::unique_ptr<LogSource> copy) {
  std::vector<char> passed(64 * 1024);
  for (std::uint64_t left = m_place.offset; left > 0;) {
    const auto count = copy->read(std::span(passed).first(std::min<std::uint64_t>(passed.size(), left)));
    if (!count.isOk() || count.value() == 0) return false;
    left -= count.value();
  }
  m_source = std::move(copy);
  return true;
}

void FollowingSource::addNote(const std::string& sentence) {
  m_note.append(m_note.empty() ? "" : " ").append(sentence);
}

/// The head is looked at too: a file that was emptied may have grown beyond what was read of it.
bool FollowingSource::isTruncated() const {
  const auto size = m_file->size();
  if (size.isOk() && size.value() < m_place.offset) return true;
  std::array<char, kHeadBytes> now{};
  const auto count = m_file->readAt(0, std::span(now).first(m_place.head.size()));
  return count.isOk() && std::string_view(now.data(), count.value()) != m_place.head;
}

}  // namespace quorvel
