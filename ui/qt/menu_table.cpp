#include "ui/qt/menu_table.h"

namespace quorvel {
namespace {

using enum MenuItem;

constexpr MenuLine kFileLines[] = {
    {"mnuOpenLogFile", "&Open log file", mnuOpenLogFile, "Ctrl+O"},
    {"mnuSaveShortInfo", "Save short info (all users)", mnuSaveShortInfo},
    {"mnuSaveFilterWindow", "&Save filtered session (filter window)", mnuSaveFilterWindow, "Ctrl+S"},
    {"mnuFileSeparator01"},
    {"mnuPrint", "Print info and filter window", mnuPrint, "Ctrl+P"},
    {"mnuFileSeparator02"},
    {"mnuExit", "&Exit", mnuExit},
};

constexpr MenuLine kCommandLines[] = {
    {"mnuFindUsers", "Find &users in logfile", mnuFindUsers, "Ctrl+U"},
    {"mnuStop", "&Stop", mnuStop},
    {"mnuCommandsSeparator01"},
    {"mnuFilterAll", "Filter all (to file)", mnuFilterAll},
    {"mnuFilterSelected", "Filter selected sessions (to file)", mnuFilterSelected},
    {"mnuFilterIP", "FIlter IP (to file)", mnuFilterIP},
    {"mnuFilterUser", "FIlter user (to file)", mnuFilterUser},
    {"mnuFilterSession", "&Filter session", mnuFilterSession, "Ctrl+F"},
    {"mnuCommandsSeparator04"},
    {"mnuReloadTreeView", "Reload TreeView", mnuReloadTreeView, "Ctrl+R"},
};

constexpr MenuLine kCounterLines[] = {
    {"mnuCountAllTransfers", "Count all transfers", mnuCountAllTransfers},
    {"mnuCountSelectedSessions", "Count selected sessions transfers", mnuCountSelectedSessions},
    {"mnuCountIPTransfers", "Count selected IP:s transfers", mnuCountIPTransfers},
    {"mnuCountUsersTransfers", "Count selected users transfers", mnuCountUsersTransfers},
    {"mnuCountSessionsTransfers", "Count current sessions transfers", mnuCountSessionsTransfers},
};

constexpr MenuLine kToolLines[] = {
    {"mnuGotoPosition", "&Goto position in logfile", mnuGotoPosition, "Ctrl+G"},
    {"mnuGetComputersIP", "Get &IP/Ping", mnuGetComputersIP, "Ctrl+I"},
    {"mnuToolsSeparator01"},
    {"mnuTreeViewUncheckAll", "Uncheck all boxes in TreeView", mnuTreeViewUncheckAll},
};

constexpr MenuLine kPreferenceLines[] = {
    {"mnuOptions", "&Options", mnuOptions},
};

constexpr MenuLine kWebLines[] = {
    {"mnuWebVisitWebsite", "Visit website (with default browser)", mnuWebVisitWebsite},
    {"mnuWebSendEmail", "Send email (with default mailer)", mnuWebSendEmail},
    {"mnuWebReportBug", "Report a bug (with default mailer)", mnuWebReportBug},
};
constexpr MenuPart kWebPart = {"mnuWeb", "Quorvel on the web", kWebLines};

constexpr MenuLine kHelpLines[] = {
    {"mnuHelpCommandLineReference", "Command Line Reference", mnuHelpCommandLineReference},
    {"mnuHelpSeparator01"},
    {"mnuHelpSeparator02"},
    {"mnuWeb", "", std::nullopt, "", false, &kWebPart},
    {"mnuAutomaticUpdate", "Automatic Update"},
    {"mnuHelpSeparator03"},
    {"mnuAbout", "&About", mnuAbout},
};

constexpr MenuLine kTreePopupLines[] = {
    {"mnuShowUsernameLogontime", "Show username - logontime", mnuShowUsernameLogontime, "", true},
    {"mnuShowUsernameIP", "Show username - IP", mnuShowUsernameIP, "", true},
    {"mnuShowIPUsername", "Show IP - username", mnuShowIPUsername, "", true},
    {"mnuShowIPLogontime", "Show IP - logontime", mnuShowIPLogontime, "", true},
    {"mnuTreeViewPopupSeparator01"},
    {"mnuReloadTreeView02", "Reload TreeView", mnuReloadTreeView02},
    {"mnuTreeViewPopupSeparator02"},
    {"mnuShowCheckboxesInTreeView", "Show checkboxes in TreeView", mnuShowCheckboxesInTreeView, "", true},
    {"mnuTreeViewUncheckAll02", "Uncheck all boxes in TreeView", mnuTreeViewUncheckAll02},
    {"mnuTreeViewPopupSeparator03"},
    {"mnuPopupCountSessionsTransfers", "Count sessions transfers", mnuPopupCountSessionsTransfers},
};

constexpr MenuPart kMenuBar[] = {
    {"mnuFile", "&File", kFileLines},
    {"mnuCommandS", "&Commands", kCommandLines},
    {"mnuCounters", "C&ounters", kCounterLines},
    {"mnuTools", "&Tools", kToolLines},
    {"mnuPreferences", "&Preferences", kPreferenceLines},
    {"mnuHelp", "&Help", kHelpLines},
};

constexpr MenuPart kTreePopup = {"mnuTreeViewPopup", "", kTreePopupLines};

}  // namespace

std::span<const MenuPart> menuBarParts() {
  return kMenuBar;
}

const MenuPart& treePopupPart() {
  return kTreePopup;
}

}  // namespace quorvel
