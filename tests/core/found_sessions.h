// What the finder reports of a log held in memory.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "core/servu_find_user_info.h"
#include "tests/support/memory_log.h"
#include "tests/support/records.h"

namespace quorvel::test {

struct FoundSessions : FindObserver {
  void onSession(const UserAct& record) override { records.push_back(record); }
  bool keepGoing(LogPosition) override { return records.size() < stopAfter; }

  std::vector<UserAct> records;
  std::size_t stopAfter = 1'000'000;
  FindEnd end = FindEnd::Finished;
};

inline FoundSessions findSessions(const std::string& log, const FindOptions& options,
                                  std::size_t stopAfter = 1'000'000) {
  FoundSessions found;
  found.stopAfter = stopAfter;
  const auto end = ServuFindUserInfo(openLog(log), options, found);
  EXPECT_TRUE(end.isOk());
  if (end.isOk()) found.end = end.value();
  return found;
}

}  // namespace quorvel::test
