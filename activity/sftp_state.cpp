#include "activity/sftp_state.h"

#include <algorithm>
#include <utility>

namespace quorvel {
namespace {

constexpr std::size_t kMost = 64;

/// Puts item behind the others, or in the oldest one's place.
template <typename Item>
Item put(std::vector<Item>& items, std::size_t& oldest, Item item) {
  if (items.size() < kMost) {
    items.push_back(std::move(item));
    return {};
  }
  oldest = (oldest + 1) % kMost;
  return std::exchange(items[oldest], std::move(item));
}

template <typename Item>
Item takeAt(std::vector<Item>& items, typename std::vector<Item>::iterator at) {
  Item item = std::move(*at);
  if (at != items.end() - 1) *at = std::move(items.back());
  items.pop_back();
  return item;
}

}  // namespace

void SftpState::addRequest(SftpRequest request) {
  m_bytes += bytesOf(request);
  const std::size_t before = m_requests.size();
  const SftpRequest forgotten = put(m_requests, m_oldestRequest, std::move(request));
  if (m_requests.size() == before) m_bytes -= bytesOf(forgotten);
}

std::optional<SftpRequest> SftpState::takeRequest(std::uint32_t number) {
  const auto found = std::find_if(m_requests.begin(), m_requests.end(),
                                  [number](const SftpRequest& request) { return request.number == number; });
  if (found == m_requests.end()) return std::nullopt;
  m_bytes -= bytesOf(*found);
  return takeAt(m_requests, found);
}

void SftpState::addFile(SftpFile file) {
  m_bytes += bytesOf(file);
  const std::size_t before = m_files.size();
  const SftpFile forgotten = put(m_files, m_oldestFile, std::move(file));
  if (m_files.size() == before) m_bytes -= bytesOf(forgotten);
}

SftpFile* SftpState::untoldFile(FileAction action) {
  const auto found = std::find_if(m_files.begin(), m_files.end(), [action](const SftpFile& file) {
    return file.isMoved && file.action == action && file.row == kNotTold;
  });
  return found == m_files.end() ? nullptr : &*found;
}

SftpFile* SftpState::file(std::string_view handle) {
  const auto found =
      std::find_if(m_files.begin(), m_files.end(), [handle](const SftpFile& file) { return file.handle == handle; });
  return found == m_files.end() ? nullptr : &*found;
}

std::optional<SftpFile> SftpState::takeFile(std::string_view handle) {
  const SftpFile* const found = file(handle);
  if (found == nullptr) return std::nullopt;
  m_bytes -= bytesOf(*found);
  return takeAt(m_files, m_files.begin() + (found - m_files.data()));
}

std::vector<SftpFile> SftpState::takeFiles() {
  for (const SftpFile& file : m_files)
    m_bytes -= bytesOf(file);
  return std::exchange(m_files, {});
}

}  // namespace quorvel
