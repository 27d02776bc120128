#include "app/command_report.h"

#include <algorithm>
#include <array>
#include <string>

#include "log/text.h"

namespace quorvel {

void reportFailure(CommandContext& context, std::string_view text) {
  if (context.state.batchFlag) context.state.batchFailed = true;
  context.view.showMessage({std::string(text), Buttons::Ok, {}});
}

void reportOutOfMemory(CommandContext& context) {
  MainWindowView& view = context.view;
  context.state.stopFlag = false;
  view.showBusyPointer(false);
  view.setProgress(0);
  view.showProgress(false);
  view.showPositionLabels(false);
  view.showTree(true);
  view.enableTree(true);
  view.setStatusPanel(StatusPanel::Text, "Using " + context.state.logTitle);
  reportFailure(context, Error{ErrorCode::OutOfMemory, {}}.sentence());
}

bool refusesResultsFile(CommandContext& context, const std::filesystem::path& path) {
  const auto& state = context.state;
  const std::array needed = {state.logPath, context.settings.path(), state.usersFilePath(), state.filterFilePath()};
  const bool isNeeded = std::any_of(needed.begin(), needed.end(),
                                    [&path](const auto& file) { return !file.empty() && isSameFile(path, file); });
  if (isNeeded) {
    reportFailure(context, pathText(path) + ": the program itself needs this file. Please choose another one.");
  }
  return isNeeded;
}

}  // namespace quorvel
