#include "classic/lines/pending_sessions.h"

#include <algorithm>
#include <random>

namespace quorvel {
namespace {

constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;

/// Differs from run to run, so that nobody can prepare texts that look the same to it.
std::uint64_t seed() {
  static const std::uint64_t value = [] {
    std::random_device device;
    return (std::uint64_t{device()} << 32) | device();
  }();
  return value;
}

std::uint64_t mixed(std::uint64_t hash, std::uint64_t value) {
  hash = (hash ^ value) * kOdd;
  return hash ^ (hash >> 29);
}

std::uint64_t mixed(std::uint64_t hash, std::string_view text) {
  for (const char c : text)
    hash = mixed(hash, static_cast<unsigned char>(c));
  return hash;
}

std::uint64_t hashOf(SessionId id, std::string_view time) {
  return mixed(mixed(mixed(seed(), id), time.size()), time);
}

}  // namespace

void PendingSessions::add(SessionId id, const ConnectText& text, Entry entry) {
  m_entries.emplace(mixed(hashOf(id, text.time), text.ip), entry);
  m_lengths[text.time.size()].insert(text.ip.size());
  m_longestIp = std::max(m_longestIp, text.ip.size());
}

void PendingSessions::take(SessionId id, std::string_view before, std::string_view after, std::vector<Entry>& taken) {
  for (const auto& [timeLength, ipLengths] : m_lengths) {
    if (timeLength > before.size()) break;
    std::uint64_t hash = hashOf(id, before.substr(before.size() - timeLength));
    std::size_t hashed = 0;
    for (const std::size_t ipLength : ipLengths) {
      if (ipLength > after.size()) break;
      hash = mixed(hash, after.substr(hashed, ipLength - hashed));
      hashed = ipLength;
      const auto [first, last] = m_entries.equal_range(hash);
      for (auto entry = first; entry != last; ++entry)
        taken.push_back(entry->second);
      m_entries.erase(first, last);
    }
  }
}

}  // namespace quorvel
