// What the logs of all Serv-U versions share: stamp, session number, and the server's sentences.
#pragma once

#include <string>
#include <string_view>

#include "grammar/event.h"

namespace quorvel {

/// The front of a line: `[2] Mon 06Jun05 08:03:11 - (000001) ` and what stands behind it.
struct ServUFront {
  int bracket = -1;  ///< the number in it; -1: there is none
  LogTime time = kNoTime;
  std::string_view key;  ///< digits, without the parentheses; empty: none
  std::string_view text;
};

/// Reads a front whose bracket has that many digits; 0: without a bracket. False where the line has no such front.
[[nodiscard]] bool readServUFront(std::string_view line, std::size_t bracketDigits, ServUFront& front);

/// `Mon 06Jun05 08:03:11`, as all versions write it; empty for kNoTime.
[[nodiscard]] std::string servUStamp(LogTime time);

/// Reads a sentence of the server about a session: connected, logged in, sent and received files, closed, logged out.
/// False where text is none; the event is as it was then.
[[nodiscard]] bool readServUSentence(std::string_view text, Event& event);

/// Whether text is what the server says about a port it listens on.
[[nodiscard]] bool isServUListening(std::string_view text);

}  // namespace quorvel
