// Colours of the program where those of the desktop are hard to read.
#pragma once

namespace quorvel {

/// Once, when the application is there. What is disabled gets readable text, and the outlines of boxes and menus are
/// seen on a dark ground too. All other colours stay the desktop's.
void useReadableColours();

}  // namespace quorvel
