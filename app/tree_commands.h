// Commands of the session tree: building it, clicking its nodes, its layouts and its check boxes.
#pragma once

#include <cstdint>
#include <optional>

#include "app/command_context.h"
#include "classic/find/user_act.h"

namespace quorvel {

/// Rebuilds the tree from the users file, in the layout of the settings. Runs the interface while it works; the Stop
/// flag leaves the tree partly filled and is cleared. Without a users file the tree ends empty, with an unknown layout
/// it stays as it was. Part of other commands: the caller keeps them from nesting.
void buildSessionTree(CommandContext& context);

/// Leaves no node, and none clicked.
void clearSessionTree(CommandContext& context);

/// Names the layout of the settings above the tree; an unknown one leaves the lines as they are.
void writeLayoutHeader(CommandContext& context);

/// The layout changed: asks whether to rebuild the tree, and does so. Without a users file there is nothing to ask.
/// Called inside a command or on its own.
void askForTreeUpdate(CommandContext& context);

/// The session a click on the node shows; empty without a users file or records.
[[nodiscard]] std::optional<UserAct> readSessionOfNode(CommandContext& context, std::int32_t node);
/// The node of the session whose first line begins at a position of the log; 0 where the tree has none.
[[nodiscard]] std::int32_t nodeOfPosition(CommandContext& context, std::int64_t position);

// The commands below do nothing while another one runs, save for the check boxes.

/// Shows the session of the node, makes it the current one and, with auto filter on, filters it. For a node that no
/// record names, as most parents, that is the last record the tree was built from.
void clickNode(CommandContext& context, std::int32_t node);

void reloadTree(CommandContext& context);

/// Marks what is chosen in the tree's pop-up menu and opens it.
void openTreePopUp(CommandContext& context);
/// layout: 0 to 3. Nothing changes when it is the layout in use when the pop-up menu was opened.
void chooseLayout(CommandContext& context, int layout);

void toggleTreeCheckBoxes(CommandContext& context);
void uncheckAllNodes(CommandContext& context);
/// The user ticked a node in the view, which has drawn it already.
void setNodeChecked(CommandContext& context, std::int32_t node, bool checked);

}  // namespace quorvel
