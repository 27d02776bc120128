// The reference of the command line, for users: the text of --help and of CLA_ref.txt.
#pragma once

#include <string>

namespace quorvel {

/// ASCII text of lines of at most 79 characters that end with LF. Every code of kCommandCodes is described.
[[nodiscard]] std::string commandLineReference();

}  // namespace quorvel
