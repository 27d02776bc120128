#include "log/file_system.h"

#include <random>
#include <system_error>

#include "log/text.h"

namespace quorvel {
namespace {

/// The file at the end of the links that path leads through; path itself where it is no link.
std::filesystem::path linkTarget(std::filesystem::path path) {
  constexpr int kMostLinks = 40;
  std::error_code error;
  for (int left = kMostLinks; left > 0 && std::filesystem::is_symlink(path, error); --left) {
    const auto next = std::filesystem::read_symlink(path, error);
    if (error) break;
    path = path.parent_path() / next;  // next where that is absolute
  }
  return path;
}

/// A new file of the mode that old has, if there is one.
Status writeNewFile(FileSystem& files, const std::filesystem::path& path, const std::filesystem::path& old,
                    std::string_view content) {
  auto file = files.open(path, OpenMode::Replace, Owner::Program);
  if (!file.isOk()) return file.error();
  std::error_code error;
  const auto status = std::filesystem::status(old, error);
  if (std::filesystem::is_regular_file(status)) std::filesystem::permissions(path, status.permissions(), error);
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
  const std::uint64_t added = after.value() - before.value();
  if (added > lines.size() + end.size()) return written;  // others added to the file too: nothing of theirs is cut
  std::string part(static_cast<std::size_t>(added), '\0');
  const auto count = readAt(before.value(), part);
  const std::string_view ours = std::string_view(part).substr(0, lines.size());
  if (!count.isOk() || !lines.starts_with(ours) || !end.starts_with(part.substr(ours.size()))) return written;
  (void)resize(before.value() + ours.rfind('\n') + 1);  // npos + 1 is 0: no line was written whole
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

Result<std::unique_ptr<File>> FileSystem::openToAppendLines(const std::filesystem::path& path, Owner owner) {
  auto file = open(path, OpenMode::Append, owner);
  if (!file.isOk()) return file.error();
  const auto size = file.value()->size();
  if (!size.isOk()) return size.error();
  if (size.value() == 0) return file;
  char last = '\n';
  const auto count = file.value()->readAt(size.value() - 1, {&last, 1});
  if (!count.isOk()) return count.error();
  if (last != '\n') {
    if (const Status ended = file.value()->append(kLineEnd, {}); !ended.isOk()) return ended.error();
  }
  return file;
}

Status FileSystem::replaceWhole(const std::filesystem::path& path, std::string_view content) {
  const auto target = linkTarget(path);
  const auto temporary = temporaryName(target);
  Status done = writeNewFile(*this, temporary, target, content);
  if (done.isOk()) done = rename(temporary, target);
  if (done.isOk()) return {};
  (void)remove(temporary);
  return Error{done.error().code, path};
}

bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
  std::error_code error;
  if (std::filesystem::equivalent(a, b, error) && !error) return true;
  const auto fullA = std::filesystem::weakly_canonical(std::filesystem::absolute(a, error), error);
  const auto fullB = std::filesystem::weakly_canonical(std::filesystem::absolute(b, error), error);
  return !error && fullA == fullB;
}

}  // namespace quorvel
