#include "app/command_report.h"

#include <algorithm>
#include <array>
#include <string>
#include <system_error>

#include "app/program_folder_system.h"
#include "log/text.h"

namespace quorvel {

void reportFailure(CommandContext& context, std::string_view text) {
  if (context.state.batchFlag) context.state.batchFailed = true;
  context.view.showMessage({std::string(text), Buttons::Ok, {}});
}

void reportLostResults(CommandContext& context, const Error& error) {
  if (error.code == ErrorCode::DeviceUnavailable) context.state.batchReaderGone = true;
  reportFailure(context, error.sentence());
}

std::string whyNoResultsFile(const CommandContext& context, const std::filesystem::path& path) {
  const auto& state = context.state;
  if (!state.logPath.empty() && isSameFile(path, state.logPath)) {
    return pathText(path) + ": this is the log; results cannot be written into it.";
  }
  const auto& folder = state.programFolder;
  const std::array needed = {context.settings.path(), state.usersFilePath(),   state.filterFilePath(),
                             folder / "users.qva",    folder / "filter.qva",   folder / "error.log",
                             executablePath(),        state.badTransfersPath()};
  const bool isNeeded = std::any_of(needed.begin(), needed.end(),
                                    [&path](const auto& file) { return !file.empty() && isSameFile(path, file); });
  if (isNeeded) return pathText(path) + ": the program itself needs this file. Please choose another one.";
  std::error_code error;
  const auto type = std::filesystem::status(path, error).type();
  const bool isPipe = type == std::filesystem::file_type::fifo || type == std::filesystem::file_type::character;
  if (isPipe && !state.batchFlag) return pathText(path) + ": only an unattended run can write into a pipe or a device.";
  return {};
}

bool refusesResultsFile(CommandContext& context, const std::filesystem::path& path) {
  const std::string reason = whyNoResultsFile(context, path);
  if (!reason.empty()) reportFailure(context, reason);
  return !reason.empty();
}

}  // namespace quorvel
