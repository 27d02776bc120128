// A traffic report as bars.
#pragma once

#include <span>

#include "report/traffic.h"
#include "ui/qt/pages/bar_chart.h"

namespace quorvel {

/// One bar for each value of the first key, times in their order and without gaps, of others those with the most
/// bytes. By one key the parts are what went out and what came in; by two, the six values of the second key with the
/// most bytes, and all others together.
[[nodiscard]] Bars trafficBars(const Table& traffic, std::span<const TrafficKey> by);

}  // namespace quorvel
