// Standard output as the place where an answer goes.
#pragma once

#include "report/output.h"

namespace quorvel {

/// Only one at a time. Errors say whether the disk is full or nobody reads.
[[nodiscard]] std::unique_ptr<Output> standardOutput();

}  // namespace quorvel
