// What the finder reports of a log held in memory.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "core/servu_find_user_info.h"
#include "tests/support/memory_log.h"
#include "tests/support/records.h"

namespace quorvel::test {

inline std::vector<UserAct> findSessions(const std::string& log, const FindOptions& options) {
  struct Records : FindObserver {
    void onSession(const UserAct& record) override { all.push_back(record); }
    bool keepGoing(LogPosition) override { return true; }
    std::vector<UserAct> all;
  } records;
  const auto end = ServuFindUserInfo(openLog(log), options, records);
  EXPECT_TRUE(end.isOk() && end.value() == FindEnd::Finished);
  return records.all;
}

}  // namespace quorvel::test
