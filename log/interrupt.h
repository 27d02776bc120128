// Ctrl+C, and the system's other requests to end, as a question that whatever may take long asks.
#pragma once

namespace quorvel {

/// From now on the first request to end (SIGINT, SIGTERM, where there is one SIGHUP) only makes isInterrupted() true;
/// a second one ends the program at once.
void catchInterrupts();

[[nodiscard]] bool isInterrupted();

}  // namespace quorvel
