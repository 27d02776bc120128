// Work that must not fail when memory runs out.
#pragma once

#include <new>
#include <utility>

namespace quorvel {

/// Does as much of work as there is memory for. For destructors: what they still write is written where it can be,
/// and that memory ran out was told where it happened first.
template <typename Work>
void asMemoryAllows(Work&& work) noexcept {
  try {
    std::forward<Work>(work)();
  } catch (const std::bad_alloc&) {
    return;
  }
}

}  // namespace quorvel
