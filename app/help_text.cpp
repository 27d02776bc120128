#include "app/help_text.h"

#include "classic/tools/command_line_reference.h"

namespace quorvel {

std::string commandLineReferenceText(FileSystem& files, std::span<const std::filesystem::path> folders) {
  for (const std::filesystem::path& folder : folders) {
    const auto path = folder / "CLA_ref.txt";
    if (!files.Exist(path)) continue;
    const auto text = files.readWhole(path);
    if (text.isOk() && !text.value().empty()) return text.value();
  }
  return commandLineReference();
}

}  // namespace quorvel
