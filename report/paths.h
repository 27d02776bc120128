// What a path of a log means: where it lies, and which file it is.
#pragma once

#include <string>
#include <string_view>

#include "activity/activity.h"

namespace quorvel {

/// Begins with a separator or a drive letter.
[[nodiscard]] bool isAbsolutePath(std::string_view path);
/// path, behind folder where it is relative; separators are "/", of several in a row one stays. Bytes of the log.
[[nodiscard]] std::string fullPath(std::string_view folder, std::string_view path);
/// What stands before the last separator: "/" of "/a.zip"; empty for a bare name.
[[nodiscard]] std::string_view parentOf(std::string_view fullPath);
/// What stands behind the last separator.
[[nodiscard]] std::string_view fileNameOf(std::string_view path);
/// The folder that an action's path lies in, as the log gives it; empty where it is not known.
[[nodiscard]] std::string folderOf(const Activity& activity, const ActionRow& action);
/// Whether two full paths are one file as far as they tell: one is the end of the other, whole names compared. A server
/// names a file from its disk on, a client from its own root.
[[nodiscard]] bool isSamePath(std::string_view a, std::string_view b);

}  // namespace quorvel
