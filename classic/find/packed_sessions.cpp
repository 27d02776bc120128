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
  m_records.append(encodeRecord(session));
}

void PackedSessions::clear() {
  m_records.clear();
  m_offsets.clear();
}

const UserAct& PackedSessions::at(std::size_t index) {
  (void)decodeRecord(std::string_view(m_records).substr(m_offsets[index]), m_session);
  return m_session;
}

}  // namespace quorvel
