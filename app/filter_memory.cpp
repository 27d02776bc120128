#include "app/filter_memory.h"

#include <algorithm>
#include <utility>

namespace quorvel {

const std::string* FilterMemory::find(const Key& key) {
  const auto hit = std::find_if(m_entries.begin(), m_entries.end(), [&key](const Entry& e) { return e.key == key; });
  if (hit == m_entries.end()) return nullptr;
  m_entries.splice(m_entries.begin(), m_entries, hit);
  return &m_entries.front().text;
}

void FilterMemory::put(Key key, std::string text) {
  constexpr std::size_t kMostEntries = 64;
  if (text.size() > kLargest || find(key) != nullptr) return;
  m_size += text.size();
  m_entries.push_front({std::move(key), std::move(text)});
  while (m_size > kLargest || m_entries.size() > kMostEntries) {
    m_size -= m_entries.back().text.size();
    m_entries.pop_back();
  }
}

}  // namespace quorvel
