// Ctrl+C, and the system's other requests to end, as a question that a run asks between its steps.
#pragma once

namespace quorvel {

/// From now on the first request to end (SIGINT, SIGTERM, where there is one SIGHUP) only makes isInterrupted() true;
/// a second one ends the program at once.
void catchInterrupts();

[[nodiscard]] bool isInterrupted();

}  // namespace quorvel
