#include "report/lines_of_session.h"

#include <algorithm>
#include <deque>
#include <iterator>
#include <optional>
#include <utility>

#include "log/line_walk.h"
#include "log/text.h"
#include "report/line_parser.h"

namespace quorvel {
namespace {

bool belongs(const Event& event, const Activity& activity, const SessionRow& session) {
  const std::string_view key = activity.text(session.key);
  if (!key.empty()) return event.key == key;
  const std::string_view user = activity.text(session.user);
  const std::string_view address = activity.text(session.address);
  if (event.user.empty() && event.address.empty()) return false;
  return (event.user.empty() || equalsFolded(event.user, user)) && (event.address.empty() || event.address == address);
}

std::string shownLine(std::string_view line, const Event& event, TextEncoding encoding) {
  const bool isPassword = event.kind == EventKind::Command && event.verb == Verb::Pass && !event.text.empty();
  if (!isPassword) return utf8Of(line, encoding);
  const auto before = static_cast<std::size_t>(event.text.data() - line.data());
  return utf8Of(line.substr(0, before), encoding) + "****" + utf8Of(line.substr(before + event.text.size()), encoding);
}

/// As many lines as there is room for, those around a position where there are more.
class LinesAround {
 public:
  LinesAround(std::uint64_t position, std::size_t most) : m_position(position), m_most(most) {}

  /// False when the rest need not be looked at.
  bool add(std::uint64_t at, std::string text) {
    m_lines.push_back({at, std::move(text)});
    if (m_lines.size() <= m_most) return true;
    const bool isLate = m_lines[m_most / 2].position < m_position;
    if (isLate) m_lines.pop_front();
    if (!isLate) m_lines.pop_back();
    (isLate ? m_lacksFirst : m_lacksLast) = true;
    return isLate;
  }

  [[nodiscard]] LinesOfSession take() {
    return {
        {std::make_move_iterator(m_lines.begin()), std::make_move_iterator(m_lines.end())}, m_lacksFirst, m_lacksLast};
  }

 private:
  std::uint64_t m_position;
  std::size_t m_most;
  std::deque<LineOfSession> m_lines;
  bool m_lacksFirst = false;
  bool m_lacksLast = false;
};

}  // namespace

Result<LinesOfSession> readLinesOfSession(const File& log, const Activity& activity, RowNumber session,
                                          std::uint64_t position, const LinesLimit& limit,
                                          const std::atomic<bool>& isCancelled) {
  auto parser = LineParser::of(log, isCancelled);
  if (!parser.isOk()) return parser.error();
  const SessionRow row = activity.sessions[session];
  const TextEncoding encoding = activity.logs[row.log].encoding;
  const std::uint64_t half = limit.bytesRead / 2;
  const std::uint64_t from = std::max(row.position, position - std::min(position, half));
  const std::uint64_t to = std::min(row.lastPosition, from + limit.bytesRead);
  LinesAround lines(position, limit.lines);
  bool isCut = from > row.position;  // the walk begins somewhere in a line
  const auto take = [&](std::uint64_t offset, std::string_view line) {
    if (std::exchange(isCut, false)) return true;
    const Event event = parser.value().parse(line);
    return !belongs(event, activity, row) || lines.add(offset + 1, shownLine(line, event, encoding));
  };
  const Status status = walkLines(log, from - 1, to, isCancelled, take);
  if (!status.isOk()) return status.error();
  LinesOfSession found = lines.take();
  found.lacksFirst |= from > row.position;
  found.lacksLast |= to < row.lastPosition;
  return found;
}

}  // namespace quorvel
