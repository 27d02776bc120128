#include "log/file_system.h"

#include <new>
#include <random>
#include <system_error>

namespace quorvel {
namespace {

Status writeNewFile(FileSystem& files, const std::filesystem::path& path, std::string_view content) {
  auto file = files.open(path, OpenMode::Replace);
  if (!file.isOk()) return file.error();
  if (auto written = file.value()->append(content, {}); !written.isOk()) return written;
  return file.value()->sync();
}

}  // namespace

std::filesystem::path temporaryName(const std::filesystem::path& path) {
  std::random_device random;
  auto name = path;
  return name.concat(".").concat(std::to_string(random())).concat(std::to_string(random())).concat(".tmp");
}

Status File::appendLines(std::string_view lines, std::string_view end) {
  const auto before = size();
  if (!before.isOk()) return before.error();
  Status written = append(lines, end);
  if (written.isOk()) return {};
  const auto after = size();
  if (!after.isOk() || after.value() <= before.value()) return written;
  const std::string_view part = lines.substr(0, static_cast<std::size_t>(after.value() - before.value()));
  (void)resize(before.value() + part.rfind('\n') + 1);  // npos + 1 is 0: no line was written whole
  return written;
}

Result<std::string> FileSystem::readWhole(const std::filesystem::path& path) {
  auto file = open(path, OpenMode::Read);
  if (!file.isOk()) return file.error();
  const auto size = file.value()->size();
  if (!size.isOk()) return size.error();
  std::string content(static_cast<std::size_t>(size.value()), '\0');
  const auto count = file.value()->readAt(0, content);
  if (!count.isOk()) return count.error();
  if (count.value() < content.size()) return Error{ErrorCode::InputPastEnd, path};
  return content;
}

Status FileSystem::replaceWhole(const std::filesystem::path& path, std::string_view content) {
  const auto temporary = temporaryName(path);
  try {
    Status done = writeNewFile(*this, temporary, content);
    if (done.isOk()) done = rename(temporary, path);
    if (done.isOk()) return {};
    (void)remove(temporary);
    return Error{done.error().code, path};
  } catch (const std::bad_alloc&) {
    (void)remove(temporary);
    throw;
  }
}

bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
  std::error_code error;
  if (std::filesystem::equivalent(a, b, error) && !error) return true;
  const auto fullA = std::filesystem::weakly_canonical(std::filesystem::absolute(a, error), error);
  const auto fullB = std::filesystem::weakly_canonical(std::filesystem::absolute(b, error), error);
  return !error && fullA == fullB;
}

}  // namespace quorvel
