#include "classic/find/record_format.h"

#include <array>
#include <cstdint>

namespace quorvel {
namespace {

constexpr std::array kTexts = {&UserAct::Name,        &UserAct::NumberInLog, &UserAct::IP,
                               &UserAct::ConnectTime, &UserAct::LogonTime,   &UserAct::LogoffTime};
static_assert(kRecordOverhead == 3 * sizeof(std::int32_t) + kTexts.size() * sizeof(std::uint16_t));

/// Reads numbers and texts one behind the other; once a read would pass the end, it and all later ones fail.
class Decoder {
 public:
  explicit Decoder(std::string_view from) : m_from(from) {}

  [[nodiscard]] std::uint32_t number(std::size_t bytes) {
    if (bytes > m_from.size()) return fail(), 0;
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < bytes; ++i)
      value |= std::uint32_t{static_cast<unsigned char>(m_from[i])} << (8 * i);
    m_from.remove_prefix(bytes);
    return value;
  }
  [[nodiscard]] std::string_view text() {
    const std::size_t length = number(2);
    if (length > m_from.size()) return fail(), std::string_view();
    const std::string_view value = m_from.substr(0, length);
    m_from.remove_prefix(length);
    return value;
  }
  [[nodiscard]] bool failed() const { return m_failed; }
  [[nodiscard]] std::size_t bytesLeft() const { return m_from.size(); }

 private:
  void fail() {
    m_failed = true;
    m_from = {};
  }

  std::string_view m_from;
  bool m_failed = false;
};

/// The whole record up to its tree index has been read: what the decoder reads next is that index.
Decoder decoderAtTreeIndex(std::string_view slot) {
  Decoder decoder(slot);
  (void)decoder.number(4);
  for (std::size_t i = 0; i < kTexts.size(); ++i)
    (void)decoder.text();
  (void)decoder.number(4);
  return decoder;
}

}  // namespace

std::string encodeRecord(const UserAct& record, std::size_t slotSize) {
  const bool hasHighHalf = slotSize != kRecordSize;
  const bool hasLast = hasHighHalf && record.LastPosition != 0;
  std::size_t size = kRecordOverhead + (hasHighHalf ? 4 : 0) + (hasLast ? 8 : 0);
  for (const auto text : kTexts)
    size += (record.*text).size();
  std::string bytes(size, '\0');

  RecordEncoder encoder(bytes.data());
  encoder.lowHalf(record.Position);
  for (const auto text : kTexts)
    encoder.text(record.*text);
  encoder.number(record.LogonNo);
  encoder.number(record.TreeIndex);
  if (hasHighHalf) encoder.highHalf(record.Position);
  if (hasLast) {
    encoder.lowHalf(record.LastPosition);
    encoder.highHalf(record.LastPosition);
  }
  return bytes;
}

bool decodeRecord(std::string_view slot, UserAct& record, std::size_t slotSize) {
  Decoder decoder(slot);
  const std::uint32_t low = decoder.number(4);
  for (const auto text : kTexts)
    record.*text = decoder.text();
  record.LogonNo = static_cast<std::int32_t>(decoder.number(4));
  record.TreeIndex = static_cast<std::int32_t>(decoder.number(4));
  record.Position = static_cast<std::int32_t>(low);
  record.LastPosition = 0;
  if (slotSize != kRecordSize) {
    const std::uint32_t high = decoder.bytesLeft() >= 4 ? decoder.number(4) : 0;
    record.Position = static_cast<std::int64_t>((std::uint64_t{high} << 32) | low);
    if (decoder.bytesLeft() >= 8) {
      const std::uint64_t lastLow = decoder.number(4);
      record.LastPosition = static_cast<std::int64_t>((std::uint64_t{decoder.number(4)} << 32) | lastLow);
    }
  }
  if (decoder.failed()) record = UserAct();
  return !decoder.failed();
}

std::optional<UserAct> decodeRecord(std::string_view slot, std::size_t slotSize) {
  std::optional<UserAct> record(std::in_place);
  if (!decodeRecord(slot, *record, slotSize)) record.reset();
  return record;
}

std::optional<std::int32_t> decodeTreeIndex(std::string_view slot) {
  Decoder decoder = decoderAtTreeIndex(slot);
  const auto treeIndex = static_cast<std::int32_t>(decoder.number(4));
  if (decoder.failed()) return std::nullopt;
  return treeIndex;
}

bool encodeTreeIndex(std::int32_t treeIndex, std::span<char> slot) {
  const std::size_t bytesLeft = decoderAtTreeIndex({slot.data(), slot.size()}).bytesLeft();
  if (bytesLeft < 4) return false;
  RecordEncoder(slot.last(bytesLeft).data()).number(treeIndex);
  return true;
}

}  // namespace quorvel
