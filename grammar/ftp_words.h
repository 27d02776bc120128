// The words of the FTP protocol, for logs that hold what was sent.
#pragma once

#include <string_view>

#include "grammar/event.h"

namespace quorvel {

/// "RETR" in any case; Verb::Other for words that mean nothing to a session.
[[nodiscard]] Verb ftpVerb(std::string_view word);
/// Whether text begins with a command of FTP, for logs that do not tell whose words a line holds.
[[nodiscard]] bool isFtpCommand(std::string_view text);
/// Makes the event a Command: verb and argument.
void readFtpCommand(std::string_view text, Event& event);
/// Makes the event a Reply where text begins with three digits of FTP and a blank, a hyphen or nothing; else says no.
[[nodiscard]] bool readFtpReply(std::string_view text, Event& event);

}  // namespace quorvel
