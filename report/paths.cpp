#include "report/paths.h"

namespace quorvel {
namespace {

bool isSeparator(char c) {
  return c == '/' || c == '\\';
}

}  // namespace

bool isAbsolutePath(std::string_view path) {
  return !path.empty() && (isSeparator(path[0]) || (path.size() > 1 && path[1] == ':'));
}

std::string fullPath(std::string_view folder, std::string_view path) {
  std::string full;
  const auto append = [&full](std::string_view part) {
    for (const char c : part) {
      const char plain = isSeparator(c) ? '/' : c;
      if (plain != '/' || !full.ends_with('/')) full += plain;
    }
  };
  if (!folder.empty() && !isAbsolutePath(path)) {
    append(folder);
    append("/");
  }
  append(path);
  return full;
}

std::string_view parentOf(std::string_view fullPath) {
  const auto end = fullPath.find_last_of("/\\");
  if (end == std::string_view::npos) return {};
  return fullPath.substr(0, end == 0 ? 1 : end);
}

std::string_view fileNameOf(std::string_view path) {
  return path.substr(path.find_last_of("/\\") + 1);  // npos + 1 is 0
}

std::string folderOf(const Activity& activity, const ActionRow& action) {
  const std::string_view path = activity.text(action.path);
  const std::string_view parent = parentOf(path);
  if (isAbsolutePath(path)) return std::string(parent);
  if (parent.empty()) return std::string(activity.text(action.folder));
  return fullPath(activity.text(action.folder), parent);
}

bool isSamePath(std::string_view a, std::string_view b) {
  if (a.size() < b.size()) return isSamePath(b, a);
  if (b.starts_with('/')) b.remove_prefix(1);
  if (!a.ends_with(b)) return false;
  return a.size() == b.size() || a[a.size() - b.size() - 1] == '/';
}

}  // namespace quorvel
