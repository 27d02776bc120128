#include "report/line_parser.h"

#include <string>
#include <vector>

#include "log/line_walk.h"

namespace quorvel {

Result<LineParser> LineParser::of(const File& log, const std::atomic<bool>& isCancelled) {
  constexpr std::uint64_t kBytes = 1 << 20;
  constexpr std::size_t kLines = 200;
  std::vector<std::string> texts;
  const Status status = walkLines(log, 0, kBytes, isCancelled, [&texts](std::uint64_t, std::string_view line) {
    if (!line.empty()) texts.emplace_back(line);
    return texts.size() < kLines;
  });
  if (!status.isOk()) return status.error();
  const std::vector<std::string_view> lines(texts.begin(), texts.end());
  LineParser parser;
  parser.m_recognised = recogniseLog({lines, 0});
  return parser;
}

Event LineParser::parse(std::string_view line) {
  Event event;
  if (m_recognised.grammar == nullptr) return event;
  const Grammar& grammar = *m_recognised.grammar;
  if (grammar.hasDirectives() && line.starts_with('#')) grammar.takeDirective(line, m_recognised.dialect);
  grammar.parse(line, m_recognised.dialect, event);
  return event;
}

}  // namespace quorvel
