// Remembers what the filter window showed for the sessions filtered last, so that a second click does not read the log
// again.
#pragma once

#include <filesystem>
#include <list>
#include <string>
#include <string_view>

#include "classic/find/user_act.h"
#include "log/file_system.h"

namespace quorvel {

class FilterMemory {
 public:
  /// Bytes of text kept in all; a longer text is not kept.
  static constexpr std::size_t kLargest = 16 * 1024 * 1024;

  /// What a text depends on. A log that grew, or was changed in any other way, has another stamp.
  struct Key {
    std::filesystem::path log;
    FileStamp stamp;
    UserAct session;
    std::string options;  ///< of the filter, in any form that differs when they do
    friend bool operator==(const Key&, const Key&) = default;
  };

  /// The text for key, null when it is not remembered. Valid until the next put().
  [[nodiscard]] const std::string* find(const Key& key);
  /// Keeps text, in place of those that were not asked for the longest.
  void put(Key key, std::string text);

 private:
  struct Entry {
    Key key;
    std::string text;
  };
  std::list<Entry> m_entries;  ///< the one used last first
  std::size_t m_size = 0;      ///< of all texts
};

}  // namespace quorvel
