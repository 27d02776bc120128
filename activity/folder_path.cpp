#include "activity/folder_path.h"

namespace quorvel {
namespace {

bool isSeparator(char c) {
  return c == '/' || c == '\\';
}

bool hasDrive(std::string_view path) {
  return path.size() >= 2 && path[1] == ':' &&
         ((path[0] >= 'A' && path[0] <= 'Z') || (path[0] >= 'a' && path[0] <= 'z'));
}

void goUp(std::string& folder) {
  std::size_t end = folder.size();
  while (end > 0 && !isSeparator(folder[end - 1]))
    --end;
  // The slash of the root stays.
  const bool isRoot = end == 1 || (end == 3 && hasDrive(folder));
  if (end > 0) folder.resize(isRoot ? end : end - 1);
}

void goInto(std::string& folder, std::string_view name, char separator) {
  if (name.empty() || name == ".") return;
  if (name == "..") {
    goUp(folder);
    return;
  }
  if (folder.empty() || !isSeparator(folder.back())) folder += separator;
  folder += name;
}

}  // namespace

std::string folderAfter(std::string_view folder, std::string_view argument) {
  if (argument.size() > kLongestFolder || argument.starts_with('~')) return {};
  std::string result;
  if (hasDrive(argument)) {
    result.append(argument.substr(0, 2));
    argument.remove_prefix(2);
  } else if (argument.empty() || !isSeparator(argument.front())) {
    if (folder.empty()) return {};
    result.append(folder);
  }
  const bool hasBackslashes = argument.find('/') == std::string_view::npos && result.find('/') == std::string::npos;
  const char separator = hasBackslashes && argument.find('\\') != std::string_view::npos ? '\\' : '/';
  while (!argument.empty()) {
    const std::size_t end = argument.find(separator);
    goInto(result, argument.substr(0, end), separator);
    argument.remove_prefix(end == std::string_view::npos ? argument.size() : end + 1);
  }
  if (result.empty()) result.push_back(separator);
  return result.size() > kLongestFolder ? std::string() : result;
}

std::string folderInReply(std::string_view text) {
  std::string folder;
  const std::size_t begin = text.find('"');
  if (begin == std::string_view::npos) return {};
  for (std::size_t at = begin + 1; at < text.size() && folder.size() <= kLongestFolder; ++at) {
    if (text[at] == '"') {
      if (at + 1 == text.size() || text[at + 1] != '"') return folder;
      ++at;
    }
    folder += text[at];
  }
  return {};
}

}  // namespace quorvel
