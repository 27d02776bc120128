// Names, version and addresses of the program.
#pragma once

#include <string_view>

namespace quorvel {

inline constexpr std::string_view kProgramName = "Quorvel analyzer";
/// major.minor.revision, e.g. "1.1.400"; stated once, in the top CMakeLists.txt.
inline constexpr std::string_view kVersion = QUORVEL_VERSION;
inline constexpr std::string_view kMaker = "Quorvel";
inline constexpr std::string_view kWebAddress = "https://quorvel.example.org/";
inline constexpr std::string_view kSupportAddress = "support@quorvel.example.org";

}  // namespace quorvel
