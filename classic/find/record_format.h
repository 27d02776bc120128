// Layout of one session record in the users file: little-endian, packed, in slots of one size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "classic/find/user_act.h"

namespace quorvel {

/// Bytes between the starts of two records, the same in the whole file. On disk, do not change. In the usual slots a
/// position has 32 bits. In the others its high four bytes follow the record, and LastPosition behind them where it is
/// known; the last four bytes of the first slot tell the size: see kSlotMark.
inline constexpr std::size_t kRecordSize = 128;
inline constexpr std::size_t kLargeSlotSize = 512;     ///< for logs of 2 GiB and more, and of the current shape
inline constexpr std::size_t kLargestSlotSize = 1024;  ///< for names and addresses of up to 255 bytes each

/// Stands at the end of the first slot of all but the usual size. Read as the tree index of a record that fills a usual
/// slot, it would be a negative one, which no record has.
inline constexpr std::string_view kSlotMark = "QVA\xFF";

/// The slots for a log of this many bytes, whose every position has room in them.
[[nodiscard]] constexpr std::size_t slotSizeFor(std::int64_t logLength) {
  return logLength > std::numeric_limits<std::int32_t>::max() ? kLargeSlotSize : kRecordSize;
}

/// The bytes of a slot that a record may fill.
[[nodiscard]] constexpr std::size_t recordRoom(std::size_t slotSize) {
  return slotSize == kRecordSize ? slotSize : slotSize - kSlotMark.size();
}

/// The three integers and six length words of a record: what is left of a slot holds the texts.
inline constexpr std::size_t kRecordOverhead = 3 * 4 + 6 * 2;

/// Offset in a slot of the first byte of record n (from 1) in the users file.
[[nodiscard]] constexpr std::uint64_t recordOffset(std::int64_t recordNumber, std::size_t slotSize = kRecordSize) {
  return static_cast<std::uint64_t>(recordNumber - 1) * slotSize;
}

/// Writes a record field by field, in the order of UserAct. Checks nothing: the caller provides kRecordOverhead bytes
/// and room for the texts, of at most 65,535 bytes each.
class RecordEncoder {
 public:
  explicit RecordEncoder(char* to) : m_to(to) {}

  void number(std::int32_t value) { put(static_cast<std::uint32_t>(value)); }
  void lowHalf(std::int64_t position) { put(static_cast<std::uint32_t>(position)); }
  void highHalf(std::int64_t position) { put(static_cast<std::uint32_t>(position >> 32)); }
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

/// The record in the form it has in a slot of this size; it may be longer than one. Its texts have at most 65,535 bytes
/// each.
[[nodiscard]] std::string encodeRecord(const UserAct& record, std::size_t slotSize = kRecordSize);

/// Reads a record from the start of slot, which may be cut after the record. False, and an empty record, when a length
/// word points behind the slot's end.
[[nodiscard]] bool decodeRecord(std::string_view slot, UserAct& record, std::size_t slotSize = kRecordSize);
[[nodiscard]] std::optional<UserAct> decodeRecord(std::string_view slot, std::size_t slotSize = kRecordSize);

/// The tree index alone, without decoding the texts. Empty, or false and slot untouched, where decodeRecord() fails.
[[nodiscard]] std::optional<std::int32_t> decodeTreeIndex(std::string_view slot);
[[nodiscard]] bool encodeTreeIndex(std::int32_t treeIndex, std::span<char> slot);

}  // namespace quorvel
