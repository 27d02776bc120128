#include "ui/qt/tool_dialogs.h"

#include <algorithm>
#include <array>

#include "app/help_text.h"
#include "app/options.h"
#include "app/program_folder.h"
#include "app/tree_commands.h"
#include "ui/qt/about_dialog.h"
#include "ui/qt/computer_ip_dialog.h"
#include "ui/qt/goto_position_dialog.h"
#include "ui/qt/options_dialog.h"
#include "ui/qt/print_command.h"
#include "ui/qt/text_viewer.h"

namespace quorvel {
namespace {

void openGotoPosition(QWidget& window, frmMain& commands) {
  const CommandContext& context = commands.context();
  frmGotoPosInLog(context.files, context.state.logPath, &window).exec();
}

/// Of the session that the user-info box shows: filtering to a file makes others the current one.
std::string shownAddress(CommandContext& context) {
  if (context.state.selectedNode == 0) return context.state.currentSession.IP;
  return readSessionOfNode(context, context.state.selectedNode).value_or(context.state.currentSession).IP;
}

void openComputerIP(QWidget& window, frmMain& commands) {
  lookUp(window, commands, shownAddress(commands.context()));
}

void openOptions(QWidget& window, frmMain& commands) {
  frmOption form(commands.context());
  OptionsDialog dialog(form, &window);
  if (dialog.exec() == QDialog::Accepted) form.cmdOK_Click();
}

void openReference(QWidget& window, frmMain& commands) {
  const CommandContext& context = commands.context();
  const std::filesystem::path beside = executableFolder();
  const std::array folders{context.state.programFolder, beside, beside.parent_path() / "share" / "quorvel"};
  TextViewer("Command Line Reference", commandLineReferenceText(context.files, folders), &window).exec();
}

void openAbout(QWidget& window, frmMain& commands) {
  frmAbout(commands.state().programFolder, &window).exec();
}

struct ToolLine {
  MenuItem item;
  Tool open;
};

using enum MenuItem;

constexpr std::array kTools = {
    ToolLine{mnuPrint, mnuPrint_Click},
    ToolLine{mnuGotoPosition, openGotoPosition},
    ToolLine{mnuGetComputersIP, openComputerIP},
    ToolLine{mnuOptions, openOptions},
    ToolLine{mnuHelpCommandLineReference, openReference},
    ToolLine{mnuAbout, openAbout},
};

}  // namespace

void lookUp(QWidget& window, frmMain& commands, std::string_view address) {
  frmComputerIP(commands.context().settings, address, openIcmpSocket, &window).exec();
}

Tool toolFor(MenuItem item) {
  const auto* const line =
      std::find_if(kTools.begin(), kTools.end(), [item](const ToolLine& tool) { return tool.item == item; });
  return line == kTools.end() ? nullptr : line->open;
}

}  // namespace quorvel
