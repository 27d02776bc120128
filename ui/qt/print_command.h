// mnuPrint: prints the user-info box and the filter window.
#pragma once

class QWidget;

namespace quorvel {

class frmMain;

/// Asks for the printer, then prints. Stop ends it after the page being printed. Does nothing while a command runs.
void mnuPrint_Click(QWidget& window, frmMain& commands);

}  // namespace quorvel
