// The folder of an FTP session, as far as its commands tell it.
#pragma once

#include <string>
#include <string_view>

namespace quorvel {

/// Longer folders are not followed.
inline constexpr std::size_t kLongestFolder = 1024;

/// The folder after `CWD argument` in folder. Empty: not known.
[[nodiscard]] std::string folderAfter(std::string_view folder, std::string_view argument);
/// The folder in the text of a reply 257: `"/a ""quoted"" name" is current directory.` Empty: there is none.
[[nodiscard]] std::string folderInReply(std::string_view text);

}  // namespace quorvel
