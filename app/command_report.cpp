#include "app/command_report.h"

#include <algorithm>
#include <array>
#include <string>
#include <system_error>

#include "core/text.h"

namespace quorvel {
namespace {

/// Also for files that do not exist, as far as their names tell.
bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
  std::error_code error;
  if (std::filesystem::equivalent(a, b, error) && !error) return true;
  const auto fullA = std::filesystem::weakly_canonical(std::filesystem::absolute(a, error), error);
  const auto fullB = std::filesystem::weakly_canonical(std::filesystem::absolute(b, error), error);
  return !error && fullA == fullB;
}

}  // namespace

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
