// Many sessions in memory, as they stand in the users file: a third of the room their texts would take one by one.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "classic/find/user_act.h"

namespace quorvel {

class PackedSessions {
 public:
  /// Takes memory for so many sessions of usual length at once; what is not filled costs nothing.
  explicit PackedSessions(std::size_t expected);

  void add(const UserAct& session);
  void clear();

  [[nodiscard]] std::size_t size() const { return m_offsets.size(); }
  /// The session added as number index, from 0; valid until the next call.
  [[nodiscard]] const UserAct& at(std::size_t index);

 private:
  std::string m_records;
  std::vector<std::size_t> m_offsets;  ///< of each record in m_records
  UserAct m_session;                   ///< looked at last; its texts keep their memory
};

}  // namespace quorvel
