#include "app/command_report.h"

#include <algorithm>
#include <array>
#include <string>

#include "core/text.h"

namespace quorvel {

void reportFailure(CommandContext& context, std::string_view text) {
  if (context.state.batchFlag) context.state.batchFailed = true;
  context.view.showMessage({std::string(text), Buttons::Ok, {}});
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
