#include "core/file_system.h"

namespace quorvel {

Result<std::string> FileSystem::readWhole(const std::filesystem::path& path) {
  auto file = open(path, OpenMode::Read);
  if (!file.isOk()) return file.error();
  const auto size = file.value()->size();
  if (!size.isOk()) return size.error();
  std::string content(static_cast<std::size_t>(size.value()), '\0');
  const auto count = file.value()->readAt(0, content);
  if (!count.isOk()) return count.error();
  content.resize(count.value());
  return content;
}

}  // namespace quorvel
