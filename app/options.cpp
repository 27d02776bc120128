#include "app/options.h"

#include <algorithm>
#include <optional>
#include <span>

#include "app/filter_commands.h"
#include "app/tree_commands.h"
#include "log/text.h"

namespace quorvel {
namespace {

enum Page {
  kFilterPage,
  kShortInfoPage,
  kSavePage,
  kTreeViewPage,
  kCounterPage,
  kCommandLinePage,
};

/// One check box of a page and the setting it stands for.
struct CheckBoxRow {
  std::size_t index;
  std::string_view caption;
  std::string_view section;
  std::string_view key;
  std::string_view toolTip = "";
  bool isLockedByTwo = false;  ///< a stored 2 disables it
};

constexpr std::string_view kFilter = "OPTION-FILTER";
constexpr std::string_view kShortInfo = "OPTION-SAVE-SHORT-INFO";
constexpr std::string_view kTreeView = "OPTION-TREEVIEW";
constexpr std::string_view kCounter = "OPTION-COUNTER";

// \xB9 is a superscript one.
constexpr CheckBoxRow kFilterRows[] = {
    {0, "Auto filter session", kFilter, "AutoFilterSession", "Automaticly filter session when clicking a node"},
    {1, "Filter entire session", kFilter, "FilterEntireSession"},
    {2, "Filter transfers", kFilter, "FilterTransfers", "Filter STOR and RETR commands", true},
    {3, "Filter deletes", kFilter, "FilterDeletes", "Filter DELE commands", true},
    {4, "Filter MDTM commands\xB9", kFilter, "FilterMDTM", "", true},
    {5, "Filter SITE commands\xB9", kFilter, "FilterSITE", "", true},
    {6, "Trunk long usernames to prevent VB error 59", "MAIN", "TrunkLongUsernames",
     "Trunks long usernames down to 12 characters", true},
};

constexpr CheckBoxRow kShortInfoRows[] = {
    {0, "Save Name", kShortInfo, "SaveName"},
    {1, "Save IP", kShortInfo, "SaveIP"},
    {2, "Save logon time", kShortInfo, "SaveLogonTime"},
    {3, "Save logoff time", kShortInfo, "SaveLogoffTime"},
    {4, "Save ID-number in log (xxxxxx)", kShortInfo, "SaveNumberInLog"},
    {5, "Save position in log", kShortInfo, "SavePosition"},
    {6, "Save logon No. (chronological order)", kShortInfo, "SaveLogonNo"},
    {7, "Save TreeIndex No.", kShortInfo, "SaveTreeIndex"},
};

constexpr CheckBoxRow kSaveRows[] = {
    {0, "Append when filtering. Must be on when running on command line arguments", "OPTION-SAVE", "AppendWhenFilter"},
};

constexpr std::size_t kCheckBoxesBox = 4;
constexpr std::size_t kQuitUsersBox = 5;
constexpr CheckBoxRow kTreeViewRows[] = {
    {kCheckBoxesBox, "Show checkboxes in TreeView", kTreeView, "CheckBoxInTreeView"},
    {kQuitUsersBox, "Display QUIT users in TreeView", kTreeView, "DisplayQUITUsers",
     "Display sessions with users that did not send their username."},
};

constexpr CheckBoxRow kCounterRows[] = {
    {0, "Count bytes when counting transfers", kCounter, "CountBytes"},
    {1, "Get filname if transfer error occured", kCounter, "GetFilenameOnTransferError"},
};

constexpr CheckBoxRow kCommandLineRows[] = {
    {0, "Automatically exit program after finish when running on command line arguments", "COMMAND-LINE-ARGUMENTS",
     "AutoExit", "Recomended: on"},
};

struct PageLine {
  std::string_view listEntry;
  std::string_view frameCaption;
  std::span<const CheckBoxRow> rows;
};

constexpr std::array<PageLine, frmOption::kPageCount> kPages{{
    {"Filter options", "Fiter options", kFilterRows},
    {"Save short info options", "Save short info options", kShortInfoRows},
    {"Save options", "Save options", kSaveRows},
    {"TreeView options", "TreeView options", kTreeViewRows},
    {"Counter options", "Counter options", kCounterRows},
    {"Command line options", "Command line options", kCommandLineRows},
}};

constexpr std::array<std::string_view, 4> kLayouts = {"Show username - logontime", "Show username - IP",
                                                      "Show IP - username", "Show IP - logontime"};

constexpr std::array<std::string_view, 6> kBufferSizes = {"2000", "4000", "8000", "16000", "24000", "32000"};
constexpr std::string_view kBufferHelp =
    "Standard: 4000 bytes\r\n"
    "When Quorvel analyzer searches for users in a logfile, a buffer is used. If you have a  slow harddrive, you might "
    "get the program work faster if you chose a larger buffer. If you have a fast harrdrive its recommended to use a "
    "small buffer.";

constexpr std::size_t kEntireSessionBox = 1;
constexpr std::size_t kFirstCoveredBox = 2;
constexpr std::size_t kLastCoveredBox = 5;

CheckState checkState(std::int32_t stored) {
  if (stored == 0) return CheckState::Clear;
  return stored == 2 ? CheckState::Greyed : CheckState::Checked;
}

int number(CheckState state) {
  return static_cast<int>(state);
}

CheckBoxControl loadCheckBox(const Settings& settings, const CheckBoxRow& row) {
  CheckBoxControl box;
  box.isVisible = true;
  box.value = checkState(settings.readNumber(row.section, row.key));
  box.isEnabled = !(row.isLockedByTwo && box.value == CheckState::Greyed);
  box.caption = row.caption;
  box.toolTip = row.toolTip;
  return box;
}

}  // namespace

std::array<std::string_view, frmOption::kPageCount> frmOption::lstSelectOption() {
  std::array<std::string_view, kPageCount> entries;
  std::transform(kPages.begin(), kPages.end(), entries.begin(), [](const PageLine& page) { return page.listEntry; });
  return entries;
}

void frmOption::Form_Load() {
  m_context.state.layoutChanged = false;
  m_page = kFilterPage;
  loadPage();
}

void frmOption::lstSelectOption_Click(int page) {
  saveOptions();
  if (page < 0 || page >= kPageCount) return;
  m_page = page;
  loadPage();
}

void frmOption::loadPage() {
  const PageLine& page = kPages[static_cast<std::size_t>(m_page)];
  m_controls = {};
  m_controls.frameCaption = page.frameCaption;
  for (const CheckBoxRow& row : page.rows)
    m_controls.chkOption[row.index] = loadCheckBox(m_context.settings, row);
  if (m_page == kFilterPage) m_controls.footnote = {true, "\xB9 Requires FTP reply logging"};
  if (m_page == kTreeViewPage) loadTreeViewOptions();
}

void frmOption::loadTreeViewOptions() {
  const std::int32_t layout = m_context.settings.readNumber(kTreeView, "TreeViewType");
  for (std::size_t i = 0; i < kLayouts.size(); ++i)
    m_controls.optOption[i] = {true, static_cast<std::int32_t>(i) == layout, std::string(kLayouts[i])};
}

void frmOption::loadFindUserinfoOptions() {
  m_page = -1;
  m_controls = {};
  m_controls.frameCaption = "Find user options";
  const std::string stored = m_context.settings.ReadSetting("OPTION-FIND-USER", "FindUserBuffer");
  ComboBoxControl& sizes = m_controls.comboBox;
  sizes.isVisible = true;
  sizes.entries.assign(kBufferSizes.begin(), kBufferSizes.end());
  const auto hit = std::find(sizes.entries.begin(), sizes.entries.end(), stored);
  if (hit != sizes.entries.end()) sizes.selected = static_cast<int>(hit - sizes.entries.begin());
  m_controls.unitLabel = {true, "bytes"};
  m_controls.footnote = {true, std::string(kBufferHelp)};
}

void frmOption::chkOption_Click(std::size_t index) {
  CheckBoxControl& box = m_controls.chkOption.at(index);
  if (!box.isVisible || !box.isEnabled) return;
  box.value = box.value == CheckState::Clear ? CheckState::Checked : CheckState::Clear;
  if (m_page != kFilterPage || index != kEntireSessionBox) return;
  const bool isCovered = box.value == CheckState::Checked;
  for (std::size_t i = kFirstCoveredBox; i <= kLastCoveredBox; ++i) {
    m_controls.chkOption[i].value = isCovered ? CheckState::Greyed : CheckState::Clear;
    m_controls.chkOption[i].isEnabled = !isCovered;
  }
}

void frmOption::optOption_Click(std::size_t index) {
  if (!m_controls.optOption.at(index).isVisible) return;
  for (std::size_t i = 0; i < m_controls.optOption.size(); ++i)
    m_controls.optOption[i].isOn = i == index;
}

void frmOption::saveOptions() {
  if (m_page < 0) return;
  if (m_page == kTreeViewPage) return saveTreeViewOptions();
  saveCheckBoxes();
}

void frmOption::saveCheckBoxes() {
  for (const CheckBoxRow& row : kPages[static_cast<std::size_t>(m_page)].rows)
    m_context.settings.WriteSetting(row.section, row.key,
                                    std::to_string(number(m_controls.chkOption[row.index].value)));
}

void frmOption::saveTreeViewOptions() {
  saveLayout();
  const CheckState quitUsers = m_controls.chkOption[kQuitUsersBox].value;
  if (m_context.settings.readNumber(kTreeView, "DisplayQUITUsers") != number(quitUsers))
    m_context.state.layoutChanged = true;
  saveCheckBoxes();
  const bool showsBoxes = m_controls.chkOption[kCheckBoxesBox].value == CheckState::Checked;
  m_context.state.showsCheckBoxes = showsBoxes;
  m_context.view.showTreeCheckBoxes(showsBoxes);
}

void frmOption::saveLayout() {
  const auto& buttons = m_controls.optOption;
  const auto on =
      std::find_if(buttons.begin(), buttons.end(), [](const OptionButtonControl& button) { return button.isOn; });
  m_context.state.layoutChanged = false;
  if (on == buttons.end()) return;  // an unknown layout is stored and none was chosen: it stays
  const std::string layout = std::to_string(on - buttons.begin());
  m_context.state.layoutChanged = m_context.settings.ReadSetting(kTreeView, "TreeViewType") != layout;
  m_context.settings.WriteSetting(kTreeView, "TreeViewType", layout);
}

void frmOption::cmdOK_Click() {
  saveOptions();
  writeFilterOptionsHeader(m_context);
  if (!m_context.state.layoutChanged) return;
  askForTreeUpdate(m_context);
  writeLayoutHeader(m_context);
}

}  // namespace quorvel
