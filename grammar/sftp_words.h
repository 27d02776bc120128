// The words of the SFTP protocol, for logs that hold requests and what was answered: `{0x00000003} SSH_FXP_OPEN: ...`.
#pragma once

#include <string_view>

#include "grammar/event.h"

namespace quorvel {

/// Makes the event a Request; false where text has no request number.
[[nodiscard]] bool readSftpRequest(std::string_view text, Event& event);
/// Makes the event an Answer: a status, the handle of an open file, or data; false where text has no request number.
[[nodiscard]] bool readSftpAnswer(std::string_view text, Event& event);

}  // namespace quorvel
