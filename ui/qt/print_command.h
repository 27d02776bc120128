// mnuPrint: prints the user-info box and the filter window.
#pragma once

#include <functional>

class QWidget;

namespace quorvel {

class frmMain;
struct PrintedDocument;

/// Asks for the printer, then prints; a printer that is missing or fails is told. keepGoing as in printPages().
void printDocument(QWidget& window, const PrintedDocument& document, const std::function<bool()>& keepGoing);

/// Asks for the printer, then prints. Stop ends it after the page being printed. Does nothing while a command runs.
void mnuPrint_Click(QWidget& window, frmMain& commands);

}  // namespace quorvel
