// Layout of one session record in the users file: little-endian, packed, in fixed slots.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/user_act.h"

namespace quorvel {

/// Bytes between the starts of two records. On disk, do not change.
inline constexpr std::size_t kRecordSize = 128;

/// The three integers and six length words of a record: what is left of a slot holds the texts.
inline constexpr std::size_t kRecordOverhead = 3 * 4 + 6 * 2;

/// Offset in a slot of the first byte of record n (from 1) in the users file.
[[nodiscard]] constexpr std::uint64_t recordOffset(std::int64_t recordNumber) {
  return static_cast<std::uint64_t>(recordNumber - 1) * kRecordSize;
}

/// Number of bytes the record takes.
[[nodiscard]] std::size_t recordSize(const UserAct& record);

/// Writes the record to the start of slot and returns the number of bytes it takes; the rest of the slot is left as
/// it is. 0, and slot untouched, when the record needs more than slot.size() bytes.
[[nodiscard]] std::size_t encodeRecord(const UserAct& record, std::span<char> slot);

/// Reads a record from the start of slot. False, and an empty record, when a length word points behind the slot's end.
[[nodiscard]] bool decodeRecord(std::string_view slot, UserAct& record);
[[nodiscard]] std::optional<UserAct> decodeRecord(std::string_view slot);

/// The tree index alone, without decoding the texts. Empty, or false and slot untouched, where decodeRecord() fails.
[[nodiscard]] std::optional<std::int32_t> decodeTreeIndex(std::string_view slot);
[[nodiscard]] bool encodeTreeIndex(std::int32_t treeIndex, std::span<char> slot);

}  // namespace quorvel
