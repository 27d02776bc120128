#include "app/tree_commands.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

#include "app/filter_commands.h"
#include "app/needed_files.h"
#include "app/program.h"
#include "classic/find/users_file.h"
#include "classic/tree/add_to_tree_view.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::string_view kSection = "OPTION-TREEVIEW";
constexpr std::string_view kLayoutKey = "TreeViewType";
constexpr std::string_view kCheckBoxKey = "CheckBoxInTreeView";

constexpr std::array<MenuItem, kTreeLayoutCount> kLayoutItems = {
    MenuItem::mnuShowUsernameLogontime,
    MenuItem::mnuShowUsernameIP,
    MenuItem::mnuShowIPUsername,
    MenuItem::mnuShowIPLogontime,
};

/// Only "1" itself counts among the numbers; what is no number stands for the default.
bool displaysQuitUsers(const Settings& settings) {
  constexpr std::string_view kKey = "DisplayQUITUsers";
  const std::string value = settings.ReadSetting(kSection, kKey);
  return parseInteger(value) ? value == "1" : settings.readNumber(kSection, kKey) == 1;
}

/// Asked after each record.
bool keepsBuilding(CommandContext& context, UsersFile& users) {
  if (context.pacer.isDue()) {
    (void)users.flush();
    context.view.yield();
  }
  if (!context.state.stopFlag) return true;
  context.state.stopFlag = false;
  return false;
}

/// Tells the view when the tree may not be looked at, whatever ends the change.
class TreeChange {
 public:
  explicit TreeChange(MainWindowView& view) : m_view(view) { m_view.treeIsAboutToChange(); }
  TreeChange(const TreeChange&) = delete;
  TreeChange& operator=(const TreeChange&) = delete;
  ~TreeChange() { m_view.treeHasChanged(); }

 private:
  MainWindowView& m_view;
};

void fillTree(CommandContext& context, const TreeOptions& options) {
  const TreeChange change(context.view);
  context.state.selectedNode = 0;
  auto users = UsersFile::open(context.files, context.state.usersFilePath(), OpenMode::ReadWrite);
  if (users.isOk()) {
    AddToTreeView(users.value(), options, context.state.tree, [&] { return keepsBuilding(context, users.value()); });
  } else {
    context.state.tree.clear();
  }
}

/// The record shown for a node, 0 where there are no records. The rule: read from record 1 until one has the node as
/// its tree index, or the next record number would exceed the node count. The tree knows the answer for every record
/// it was built from; only what lies behind a stopped build, or in a file that is no longer the tree's, is searched.
std::int32_t recordToShow(UsersFile& users, const SessionTree& tree, std::int32_t node) {
  const std::int32_t limit = std::min(users.recordCount(), std::max(tree.nodeCount(), 1));
  const std::int32_t known = tree.recordOf(node);
  const bool isReachable = known >= 1 && known <= limit;
  if (isReachable && users.treeIndex(known) == node) return known;
  const bool isFileOfTree = users.treeIndex(tree.lastNotedRecord()) == tree.nodeCount();
  for (std::int32_t n = isFileOfTree && !isReachable ? tree.lastNotedRecord() + 1 : 1; n <= limit; ++n)
    if (users.treeIndex(n) == node) return n;
  return limit;
}

std::string userInfo(const UserAct& session) {
  std::string text;
  text.append("Username:   ").append(session.Name).append(kLineEnd);
  text.append("From IP:    ").append(session.IP).append(kLineEnd);
  text.append("Connected:  ").append(session.ConnectTime).append(kLineEnd);
  text.append("Logged in:  ").append(session.LogonTime).append(kLineEnd);
  text.append("Logged out: ").append(session.LogoffTime).append(kLineEnd);
  text.append("No. in log: ").append(session.NumberInLog).append(kLineEnd);
  text.append("Pos in log: ").append(std::to_string(session.Position));
  return text;
}

bool hasUsersFile(CommandContext& context) {
  return context.files.Exist(context.state.usersFilePath());
}

}  // namespace

void buildSessionTree(CommandContext& context) {
  context.view.enableTree(false);
  context.view.setStatusPanel(StatusPanel::Text, "Adding to treeview");
  const TreeOptions options{context.settings.readNumber(kSection, kLayoutKey), displaysQuitUsers(context.settings)};
  context.view.showTree(false);
  if (isTreeLayout(options.layout) && context.view.hasTree()) fillTree(context, options);
  context.view.showTree(true);
  context.view.setStatusPanel(StatusPanel::Text, "Using: " + context.state.logTitle);
  context.view.enableTree(true);
}

void clearSessionTree(CommandContext& context) {
  const TreeChange change(context.view);
  context.state.tree.clear();
  context.state.selectedNode = 0;
}

void writeLayoutHeader(CommandContext& context) {
  const int layout = context.settings.readNumber(kSection, kLayoutKey);
  if (isTreeLayout(layout)) context.view.setTreeHeader(treeHeader(layout));
}

void askForTreeUpdate(CommandContext& context) {
  const CommandGuard guard(context);  // where a command asks, it holds one already and this one does nothing
  if (!hasUsersFile(context)) return;
  const bool isWanted =
      context.view.showMessage({"You have chosen to change the layout of the TreeView\r\n"
                                "Do you want to have the TreeView updated?",
                                Buttons::YesNo, std::string(kProgramName) + " - update TreeView?"});
  if (isWanted) buildSessionTree(context);
}

std::optional<UserAct> readSessionOfNode(CommandContext& context, std::int32_t node) {
  auto users = UsersFile::open(context.files, context.state.usersFilePath());
  if (!users.isOk()) return std::nullopt;
  const UserAct* const record = users.value().read(recordToShow(users.value(), context.state.tree, node));
  return record != nullptr ? std::optional(*record) : std::nullopt;
}

std::int32_t nodeOfPosition(CommandContext& context, std::int64_t position) {
  constexpr std::int64_t kLongestFront = 64;  // of a line, with its session number
  auto users = UsersFile::open(context.files, context.state.usersFilePath());
  if (!users.isOk()) return 0;
  for (std::int32_t n = 1; n <= users.value().recordCount(); ++n) {
    const UserAct* const record = users.value().read(n);
    if (record == nullptr) return 0;
    if (record->Position < position || record->Position >= position + kLongestFront) continue;
    return users.value().treeIndex(n).value_or(0);
  }
  return 0;
}

void clickNode(CommandContext& context, std::int32_t node) {
  const CommandGuard guard(context);
  if (!guard) return;
  context.state.selectedNode = node;
  if (!hasUsersFile(context)) return reportLostUsersFile(context);
  const auto session = readSessionOfNode(context, node);
  if (!session) return;
  context.state.currentSession = *session;
  context.view.setUserInfo(userInfo(*session));
  if (context.settings.readNumber("OPTION-FILTER", "AutoFilterSession") == 1) filterCurrentSession(context);
}

void reloadTree(CommandContext& context) {
  const CommandGuard guard(context);
  if (guard && hasUsersFile(context)) buildSessionTree(context);
}

void openTreePopUp(CommandContext& context) {
  if (context.state.commandRunning) return;
  context.state.keptLayout = context.settings.ReadSetting(kSection, kLayoutKey);
  const int layout = context.settings.readNumber(kSection, kLayoutKey);
  if (isTreeLayout(layout)) context.view.checkMenuItem(kLayoutItems[static_cast<std::size_t>(layout)], true);
  const bool hasCheckBoxes = context.settings.readFlag(kSection, kCheckBoxKey);
  context.view.checkMenuItem(MenuItem::mnuShowCheckboxesInTreeView, hasCheckBoxes);
  context.view.enableMenuItem(MenuItem::mnuTreeViewUncheckAll02, hasCheckBoxes);
  context.view.popUpTreeMenu();
}

void chooseLayout(CommandContext& context, int layout) {
  const CommandGuard guard(context);
  if (!guard) return;
  for (int other = 0; other < kTreeLayoutCount; ++other)
    if (other != layout) context.view.checkMenuItem(kLayoutItems[static_cast<std::size_t>(other)], false);
  if (parseInteger(context.state.keptLayout).value_or(0) == layout) return;
  context.settings.WriteSetting(kSection, kLayoutKey, std::to_string(layout));
  askForTreeUpdate(context);
  writeLayoutHeader(context);
}

void toggleTreeCheckBoxes(CommandContext& context) {
  // The menu item carries what the settings said when the pop-up menu opened.
  const bool areShown = !context.settings.readFlag(kSection, kCheckBoxKey);
  context.view.checkMenuItem(MenuItem::mnuShowCheckboxesInTreeView, areShown);
  context.settings.WriteSetting(kSection, kCheckBoxKey, areShown ? "1" : "0");
  context.state.showsCheckBoxes = areShown;
  context.view.showTreeCheckBoxes(areShown);
}

void uncheckAllNodes(CommandContext& context) {
  context.state.tree.uncheckAll();
  context.view.treeChecksHaveChanged();
}

void setNodeChecked(CommandContext& context, std::int32_t node, bool checked) {
  context.state.tree.setChecked(node, checked);
}

}  // namespace quorvel
