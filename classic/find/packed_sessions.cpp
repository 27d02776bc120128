#include "classic/find/packed_sessions.h"

#include <string_view>

#include "classic/find/record_format.h"

namespace quorvel {

PackedSessions::PackedSessions(std::size_t expected) {
  m_records.reserve(expected * kRecordSize);
  m_offsets.reserve(expected);
}

void PackedSessions::add(const UserAct& session) {
  m_offsets.push_back(m_records.size());
  m_records.append(encodeRecord(session, kLargestSlotSize));
}

void PackedSessions::clear() {
  m_records.clear();
  m_offsets.clear();
}

const UserAct& PackedSessions::at(std::size_t index) {
  const std::size_t end = index + 1 < m_offsets.size() ? m_offsets[index + 1] : m_records.size();
  const std::string_view record = std::string_view(m_records).substr(m_offsets[index], end - m_offsets[index]);
  (void)decodeRecord(record, m_session, kLargestSlotSize);
  return m_session;
}

}  // namespace quorvel
