// Layout of one session record in the users file: little-endian, packed, in fixed slots.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "classic/find/user_act.h"

namespace quorvel {

/// Bytes between the starts of two records. On disk, do not change.
inline constexpr std::size_t kRecordSize = 128;

/// The three integers and six length words of a record: what is left of a slot holds the texts.
inline constexpr std::size_t kRecordOverhead = 3 * 4 + 6 * 2;

/// Offset in a slot of the first byte of record n (from 1) in the users file.
[[nodiscard]] constexpr std::uint64_t recordOffset(std::int64_t recordNumber) {
  return static_cast<std::uint64_t>(recordNumber - 1) * kRecordSize;
}

/// Writes a record field by field, in the order of UserAct. Checks nothing: the caller provides kRecordOverhead bytes
/// and room for the texts, of at most 65,535 bytes each.
class RecordEncoder {
 public:
  explicit RecordEncoder(char* to) : m_to(to) {}

  void number(std::int32_t value) { put(static_cast<std::uint32_t>(value)); }
  /// The text and what is put behind it.
  void text(std::string_view text, std::string_view behind = {}) {
    put(static_cast<std::uint16_t>(text.size() + behind.size()));
    copy(text);
    copy(behind);
  }
  /// The place behind what was written.
  [[nodiscard]] char* end() const { return m_to; }

 private:
  template <class Number>
  void put(Number value) {
    for (std::size_t i = 0; i < sizeof value; ++i)
      *m_to++ = static_cast<char>((value >> (8 * i)) & 0xFF);
  }
  /// Nearly all texts have 8 to 32 bytes, which two moves copy faster than a call.
  void copy(std::string_view text) {
    if (text.size() >= 16 && text.size() <= 32) {
      copyEnds<16>(text);
    } else if (text.size() >= 8 && text.size() < 16) {
      copyEnds<8>(text);
    } else if (!text.empty()) {  // an empty one may have no address
      std::memcpy(m_to, text.data(), text.size());
    }
    m_to += text.size();
  }
  /// All of a text that is no longer than its two ends.
  template <std::size_t kEnd>
  void copyEnds(std::string_view text) {
    std::memcpy(m_to, text.data(), kEnd);
    std::memcpy(m_to + text.size() - kEnd, text.data() + text.size() - kEnd, kEnd);
  }

  char* m_to;
};

/// The record in the form it has in a slot; it may be longer than one. Its texts have at most 65,535 bytes each.
[[nodiscard]] std::string encodeRecord(const UserAct& record);

/// Reads a record from the start of slot. False, and an empty record, when a length word points behind the slot's end.
[[nodiscard]] bool decodeRecord(std::string_view slot, UserAct& record);
[[nodiscard]] std::optional<UserAct> decodeRecord(std::string_view slot);

/// The tree index alone, without decoding the texts. Empty, or false and slot untouched, where decodeRecord() fails.
[[nodiscard]] std::optional<std::int32_t> decodeTreeIndex(std::string_view slot);
[[nodiscard]] bool encodeTreeIndex(std::int32_t treeIndex, std::span<char> slot);

}  // namespace quorvel
