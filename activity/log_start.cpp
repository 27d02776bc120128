#include "activity/log_start.h"

#include <algorithm>

#include "grammar/grammar.h"

namespace quorvel {
namespace {

constexpr std::size_t kStartLines = 200;

}  // namespace

std::vector<std::string_view> startLines(std::string_view text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  text = text.substr(0, kLogStartBytes);
  if (const std::size_t end = text.rfind('\n'); end != std::string_view::npos) text = text.substr(0, end);
  std::vector<std::string_view> lines;
  while (!text.empty() && lines.size() < kStartLines) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.find_first_not_of(" \t") != std::string_view::npos) lines.push_back(line);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

LogTime firstTimeOf(std::string_view text, std::int64_t fileTime) {
  const std::vector<std::string_view> lines = startLines(text);
  Recognised recognised = recogniseLog({lines, fileTime});
  if (recognised.grammar == nullptr) return kNoTime;
  for (const std::string_view line : lines) {
    if (line.starts_with('#') && recognised.grammar->hasDirectives())
      recognised.grammar->takeDirective(line, recognised.dialect);
    Event event;
    recognised.grammar->parse(line, recognised.dialect, event);
    if (event.time != kNoTime) return event.time;
  }
  return kNoTime;
}

}  // namespace quorvel
