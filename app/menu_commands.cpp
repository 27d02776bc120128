#include "app/menu_commands.h"

#include <algorithm>
#include <array>

namespace quorvel {
namespace {

struct CommandLine {
  MenuItem item;
  void (frmMain::*run)();
};

using enum MenuItem;

constexpr std::array kCommands = {
    CommandLine{mnuOpenLogFile, &frmMain::mnuOpenLogFile_Click},
    CommandLine{mnuSaveShortInfo, &frmMain::mnuSaveShortInfo_Click},
    CommandLine{mnuSaveFilterWindow, &frmMain::mnuSaveFilterWindow_Click},
    CommandLine{mnuFindUsers, &frmMain::mnuFindUsers_Click},
    CommandLine{mnuStop, &frmMain::mnuStop_Click},
    CommandLine{mnuFilterAll, &frmMain::mnuFilterAll_Click},
    CommandLine{mnuFilterSelected, &frmMain::mnuFilterSelected_Click},
    CommandLine{mnuFilterIP, &frmMain::mnuFilterIP_Click},
    CommandLine{mnuFilterUser, &frmMain::mnuFilterUser_Click},
    CommandLine{mnuFilterSession, &frmMain::mnuFilterSession_Click},
    CommandLine{mnuReloadTreeView, &frmMain::mnuReloadTreeView_Click},
    CommandLine{mnuCountAllTransfers, &frmMain::mnuCountAllTransfers_Click},
    CommandLine{mnuCountSelectedSessions, &frmMain::mnuCountSelectedSessions_Click},
    CommandLine{mnuCountIPTransfers, &frmMain::mnuCountIPTransfers_Click},
    CommandLine{mnuCountUsersTransfers, &frmMain::mnuCountUsersTransfers_Click},
    CommandLine{mnuCountSessionsTransfers, &frmMain::mnuCountSessionsTransfers_Click},
    CommandLine{mnuTreeViewUncheckAll, &frmMain::mnuTreeViewUncheckAll_Click},
    CommandLine{mnuWebVisitWebsite, &frmMain::mnuWebVisitWebsite_Click},
    CommandLine{mnuWebSendEmail, &frmMain::mnuWebSendEmail_Click},
    CommandLine{mnuWebReportBug, &frmMain::mnuWebReportBug_Click},
    CommandLine{mnuShowUsernameLogontime, &frmMain::mnuShowUsernameLogontime_Click},
    CommandLine{mnuShowUsernameIP, &frmMain::mnuShowUsernameIP_Click},
    CommandLine{mnuShowIPUsername, &frmMain::mnuShowIPUsername_Click},
    CommandLine{mnuShowIPLogontime, &frmMain::mnuShowIPLogontime_Click},
    CommandLine{mnuReloadTreeView02, &frmMain::mnuReloadTreeView_Click},
    CommandLine{mnuShowCheckboxesInTreeView, &frmMain::mnuShowCheckboxesInTreeView_Click},
    CommandLine{mnuTreeViewUncheckAll02, &frmMain::mnuTreeViewUncheckAll_Click},
    CommandLine{mnuPopupCountSessionsTransfers, &frmMain::mnuCountSessionsTransfers_Click},
};

}  // namespace

void runMenuCommand(MenuItem item, frmMain& commands) {
  const auto* const line =
      std::find_if(kCommands.begin(), kCommands.end(), [item](const CommandLine& c) { return c.item == item; });
  if (line != kCommands.end()) (commands.*line->run)();
}

}  // namespace quorvel
