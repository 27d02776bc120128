// The program's icon.
#pragma once

#include <QIcon>

namespace quorvel {

/// Drawn here, so that neither files nor image plugins are needed: lines of a log under a magnifying glass.
[[nodiscard]] QIcon windowIcon();

}  // namespace quorvel
