#include "app/main_window.h"

#include <array>
#include <string>

#include "app/count_commands.h"
#include "app/filter_commands.h"
#include "app/find_users_command.h"
#include "app/menu_groups.h"
#include "app/open_log_command.h"
#include "app/program.h"
#include "app/save_filter_window_command.h"
#include "app/short_info_command.h"
#include "app/tree_commands.h"
#include "app/web_commands.h"

namespace quorvel {
namespace {

constexpr std::string_view kPosition = "POSITION";

struct BoundsKey {
  std::string_view key;
  int WindowBounds::*value;
};

constexpr std::array<BoundsKey, 4> kBoundsKeys{{
    {"MainTop", &WindowBounds::top},
    {"MainLeft", &WindowBounds::left},
    {"MainWidth", &WindowBounds::width},
    {"MainHeight", &WindowBounds::height},
}};

}  // namespace

frmMain::frmMain(FileSystem& files, Settings& settings, MainWindowView& view, Pacer& pacer,
                 const std::filesystem::path& programFolder, const std::filesystem::path& workingFolder)
    : m_context{files, settings, m_state, view, pacer} {
  m_state.programFolder = programFolder;
  m_state.workingFolder = workingFolder.empty() ? programFolder : workingFolder;
}

void frmMain::load() {
  MainWindowView& view = m_context.view;
  writeFilterOptionsHeader(m_context);
  view.showProgress(false);
  view.showPositionLabels(false);
  EnDis::disableSessionMenus(view);
  writeLayoutHeader(m_context);
  view.setStatusPanel(StatusPanel::Text, "Version: " + std::string(kVersion));
  m_state.showsCheckBoxes = m_context.settings.readFlag("OPTION-TREEVIEW", "CheckBoxInTreeView");
  view.showTreeCheckBoxes(m_state.showsCheckBoxes);
  view.checkMenuItem(MenuItem::mnuShowCheckboxesInTreeView, m_state.showsCheckBoxes);
}

WindowPlacement frmMain::readPlacement() const {
  WindowPlacement placement;
  for (const BoundsKey& key : kBoundsKeys) {
    const std::int32_t value = m_context.settings.readNumber(kPosition, key.key);
    if (value < 1) return {};
    placement.bounds.*key.value = value;
  }
  placement.isCentred = false;
  placement.isMaximized = m_context.settings.readFlag("MAIN", "Maximized");
  return placement;
}

void frmMain::unload(const WindowBounds& normalBounds, bool isMaximized) {
  const bool mustWait = m_state.commandRunning;
  unload();
  if (mustWait) return;
  m_context.settings.WriteSetting("MAIN", "Version", kVersion);
  m_context.settings.WriteSetting("MAIN", "Maximized", isMaximized ? "True" : "False");
  for (const BoundsKey& key : kBoundsKeys)
    m_context.settings.WriteSetting(kPosition, key.key, std::to_string(normalBounds.*key.value));
}

void frmMain::unload() {
  if (m_state.commandRunning) {
    mnuStop_Click();
    return m_context.view.closeWindow();
  }
  (void)m_context.files.remove(m_state.usersFilePath());
}

void frmMain::mnuOpenLogFile_Click() {
  chooseLogFile(m_context);
}

void frmMain::openLogFile(const std::filesystem::path& path) {
  quorvel::openLogFile(m_context, path);
}

void frmMain::useLog(const std::filesystem::path& path, std::string_view title, LogType type) {
  quorvel::useLog(m_context, path, title, type);
}

void frmMain::mnuSaveShortInfo_Click() {
  SaveShortInfoCommand(m_context);
}

void frmMain::mnuSaveFilterWindow_Click() {
  saveFilterWindow(m_context);
}

void frmMain::mnuFindUsers_Click() {
  findUsers(m_context);
}

void frmMain::mnuStop_Click() {
  m_state.stopFlag = true;
}

void frmMain::mnuFilterAll_Click() {
  filterAll(m_context);
}

void frmMain::mnuFilterSelected_Click() {
  filterSelected(m_context);
}

void frmMain::mnuFilterIP_Click() {
  filterIP(m_context);
}

void frmMain::mnuFilterUser_Click() {
  filterUser(m_context);
}

void frmMain::mnuFilterSession_Click() {
  filterSession(m_context);
}

void frmMain::mnuReloadTreeView_Click() {
  reloadTree(m_context);
}

void frmMain::toggleAutoFilter() {
  const std::int32_t isOn = m_context.settings.readNumber("OPTION-FILTER", "AutoFilterSession");
  // Read from one section and written to another: the settings file has always had both.
  if (isOn == 0 || isOn == 1)
    m_context.settings.WriteSetting("OPTION_FILTER", "AutoFilterSession", isOn == 0 ? "1" : "0");
  writeFilterOptionsHeader(m_context);
}

void frmMain::mnuCountAllTransfers_Click() {
  countAllTransfers(m_context);
}

void frmMain::mnuCountSelectedSessions_Click() {
  countSelectedSessions(m_context);
}

void frmMain::mnuCountIPTransfers_Click() {
  countIPTransfers(m_context);
}

void frmMain::mnuCountUsersTransfers_Click() {
  countUsersTransfers(m_context);
}

void frmMain::mnuCountSessionsTransfers_Click() {
  countSessionsTransfers(m_context);
}

void frmMain::cmdPasteResultTortbFilter_Click(std::string_view caption, std::string_view text) {
  pasteCounterResult(m_context, caption, text);
}

void frmMain::TreeView1_NodeClick(std::int32_t node) {
  clickNode(m_context, node);
}

void frmMain::TreeView1_RightButton() {
  openTreePopUp(m_context);
}

void frmMain::setNodeChecked(std::int32_t node, bool checked) {
  quorvel::setNodeChecked(m_context, node, checked);
}

void frmMain::mnuShowUsernameLogontime_Click() {
  chooseLayout(m_context, 0);
}

void frmMain::mnuShowUsernameIP_Click() {
  chooseLayout(m_context, 1);
}

void frmMain::mnuShowIPUsername_Click() {
  chooseLayout(m_context, 2);
}

void frmMain::mnuShowIPLogontime_Click() {
  chooseLayout(m_context, 3);
}

void frmMain::mnuShowCheckboxesInTreeView_Click() {
  toggleTreeCheckBoxes(m_context);
}

void frmMain::mnuTreeViewUncheckAll_Click() {
  uncheckAllNodes(m_context);
}

void frmMain::mnuWebVisitWebsite_Click() {
  visitWebsite(m_context.view);
}

void frmMain::mnuWebSendEmail_Click() {
  sendEmail(m_context.view);
}

void frmMain::mnuWebReportBug_Click() {
  reportBug(m_context.view);
}

}  // namespace quorvel
