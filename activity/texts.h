// Every distinct text of a log once: user names, addresses, paths, session keys. Rows hold their numbers.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "activity/rows.h"

namespace quorvel {

/// Number of a text; kNoText where there is none. The empty text is kNoText too.
using TextId = std::uint32_t;
inline constexpr TextId kNoText = 0;
/// Longer texts are cut to this many bytes and marked with kCutMark at their end.
inline constexpr std::size_t kLongestText = 4096;
inline constexpr std::string_view kCutMark = "...[cut]";

/// The texts of a snapshot. Bytes as they stand in the log.
class Texts {
 public:
  [[nodiscard]] std::string_view operator[](TextId id) const { return m_texts[id]; }
  /// Numbers run from 0 (the empty text) to size() - 1.
  [[nodiscard]] std::size_t size() const { return m_texts.size(); }

 protected:
  Rows<std::string_view> m_texts;
  std::vector<std::shared_ptr<char[]>> m_bytes;  ///< what m_texts look at
};

/// Takes texts; finds one that is there already with a seeded hash, so that no log can make it slow.
class TextPool : private Texts {
 public:
  TextPool();
  /// The number of a text, which is kept. Throws std::bad_alloc only.
  [[nodiscard]] TextId add(std::string_view text);
  [[nodiscard]] std::string_view operator[](TextId id) const { return m_texts[id]; }
  [[nodiscard]] Texts snapshot();

 private:
  [[nodiscard]] std::string_view keep(std::string_view text);
  void grow();

  struct Slot {
    TextId text = kNoText;   ///< kNoText: free
    std::uint32_t hash = 0;  ///< spares looking at texts that are others
  };

  std::vector<Slot> m_slots;  ///< open addressing, a power of two
  std::uint64_t m_seed;
  std::size_t m_room = 0;  ///< left in the last piece of m_bytes
  char* m_next = nullptr;
};

}  // namespace quorvel
