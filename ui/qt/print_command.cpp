#include "ui/qt/print_command.h"

#include <QDir>
#include <QFileInfo>
#include <QPrintDialog>
#include <QPrinter>

#include "app/main_window.h"
#include "app/program.h"
#include "log/clock.h"
#include "log/text.h"
#include "ui/qt/busy_pointer.h"
#include "ui/qt/plain_message.h"
#include "ui/qt/print_pages.h"
#include "ui/qt/text.h"

namespace quorvel {
namespace {

PrintedDocument makeDocument(CommandContext& context) {
  const DateTime now = localNow();
  PrintedDocument document;
  document.title = context.state.logTitle.empty() ? std::string(kProgramName) : context.state.logTitle;
  document.date = now.date + " " + now.time;
  document.text = context.view.userInfo();
  if (!document.text.empty()) document.text.append(kLineEnd).append(kLineEnd);
  document.text += context.view.filterText();
  return document;
}

bool keepGoing(CommandContext& context) {
  if (context.pacer.isDue()) context.view.yield();
  return !context.state.stopFlag;
}

}  // namespace

void printDocument(QWidget& window, const PrintedDocument& document, const std::function<bool()>& keepGoing) {
  QPrinter printer(QPrinter::HighResolution);
  if (!printer.isValid()) {
    showPlainMessage(&window, QStringLiteral("No printer is available."));
    return;
  }
  const QString title = toOneLine(toQString(document.title));
  printer.setDocName(title);
  if (printer.outputFormat() == QPrinter::PdfFormat)  // there is no printer
    printer.setOutputFileName(QDir::home().filePath(QFileInfo(title).completeBaseName() + QStringLiteral(".pdf")));
  QPrintDialog dialog(&printer, &window);
  dialog.setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintPageRange |
                    QAbstractPrintDialog::PrintShowPageSize | QAbstractPrintDialog::PrintCollateCopies);
  const PlainMessages plainMessages;
  if (dialog.exec() != QDialog::Accepted) return;
  showBusyPointer(true);
  const PrintOutcome outcome = printPages(printer, document, keepGoing);
  showBusyPointer(false);
  if (outcome == PrintOutcome::Failed)
    showPlainMessage(&window, QStringLiteral("The printer does not take the pages. Nothing more is printed."));
}

void mnuPrint_Click(QWidget& window, frmMain& commands) {
  CommandContext& context = commands.context();
  const CommandGuard guard(context);
  if (!guard) return;
  context.state.stopFlag = false;
  printDocument(window, makeDocument(context), [&context] { return keepGoing(context); });
  context.state.stopFlag = false;
}

}  // namespace quorvel
