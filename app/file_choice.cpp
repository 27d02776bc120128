#include "app/file_choice.h"

#include "app/command_report.h"
#include "log/text.h"

namespace quorvel {

std::string fileDialogErrorText(const FileChoice& choice) {
  const std::string sign = choice.errorNumber < 0 ? "" : " ";
  return "Error" + sign + std::to_string(choice.errorNumber) + " selecting file." + std::string(kLineEnd) +
         choice.error;
}

std::optional<std::filesystem::path> chooseSavePath(CommandContext& context, const FileRequest& request) {
  const FileChoice choice = context.view.askSaveFile(request);
  if (choice.outcome == FileChoice::Outcome::Failed) {
    context.view.showMessage({.text = fileDialogErrorText(choice)});
    return std::nullopt;
  }
  if (choice.outcome == FileChoice::Outcome::Cancelled || choice.path.empty()) return std::nullopt;
  if (refusesResultsFile(context, choice.path)) return std::nullopt;
  return choice.path;
}

std::optional<std::filesystem::path> chooseSavePathInLastFolder(CommandContext& context, std::string_view filter) {
  FileRequest request;
  request.filter = filter;
  request.folder = pathFromBytes(context.settings.ReadSetting("Main", "LastSavePath"));
  if (request.folder.empty()) request.folder = context.state.programFolder;
  request.existing = ExistingFile::AskedToReplace;
  auto path = chooseSavePath(context, request);
  if (path) context.settings.WriteSetting("Main", "LastSavePath", pathBytes(path->parent_path()));
  return path;
}

}  // namespace quorvel
