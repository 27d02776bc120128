// From when on refused log-ons stand out.
#pragma once

#include <cstdint>

namespace quorvel {

/// Each of them is enough; 0 turns it off.
struct Thresholds {
  std::uint32_t inTenMinutes = 5;   ///< refusals within any ten minutes
  std::uint32_t inTwoMinutes = 8;   ///< refusals within any two minutes
  std::uint32_t beforeSuccess = 3;  ///< refusals in a row, and then a log-on
};

}  // namespace quorvel
