// The sessions whose connect line was not where they begin: found again by any later line that connects them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "classic/find/log_marks.h"

namespace quorvel {

/// What connects a session: its ConnectTime, " - ", its number, " Connected to " and its IP, in one line.
struct ConnectText {
  std::string time;
  std::string ip;
};

/// Sessions by number and connect text. A look-up takes no longer the more there are.
class PendingSessions {
 public:
  struct Entry {
    std::uint32_t session = 0;
    std::uint32_t place = 0;  ///< of the caller's own
  };

  /// Texts are compared as they are: the caller folds them where case does not matter.
  void add(SessionId id, const ConnectText& text, Entry entry);
  [[nodiscard]] bool isEmpty() const { return m_entries.empty(); }
  /// Bytes that must be there to look at before and after a number and its " Connected to ".
  [[nodiscard]] std::size_t longestTime() const { return m_lengths.empty() ? 0 : m_lengths.rbegin()->first; }
  [[nodiscard]] std::size_t longestIp() const { return m_longestIp; }
  /// Takes out those with this number that before ends with and after starts with. Two that differ may be taken for one
  /// another by a chance of one in 2^64.
  void take(SessionId id, std::string_view before, std::string_view after, std::vector<Entry>& taken);

 private:
  std::unordered_multimap<std::uint64_t, Entry> m_entries;
  std::map<std::size_t, std::set<std::size_t>> m_lengths;  ///< for each length of time there ever was, those of ip
  std::size_t m_longestIp = 0;
};

}  // namespace quorvel
