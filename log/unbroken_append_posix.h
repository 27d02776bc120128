// Appends to a file that are not broken off where the program is killed.
#pragma once

#include <string_view>

namespace quorvel {

/// Writes data, and end behind it, with the descriptor of a file that was opened for appending or just emptied. Returns
/// 0, or the system's error number when a part of it may be missing.
///
/// The system breaks off the write of a process that is killed at the end of any page. On Linux a second process that
/// shares the memory of this one therefore does the writing, while the caller waits: killed, the program leaves it to
/// end by itself. It is no member of the program's process group, which may be killed as a whole.
[[nodiscard]] int appendUnbroken(int descriptor, std::string_view data, std::string_view end);

}  // namespace quorvel
