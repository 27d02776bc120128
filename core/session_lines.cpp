#include "core/session_lines.h"

#include <algorithm>
#include <string>

#include "core/text.h"

namespace quorvel {
namespace {

constexpr LogPosition kLookBack = 50;
constexpr std::size_t kPiece = 256 * 1024;

/// Hands out the lines of one session, reading the log forward from its connect line.
Status readOneSession(const LogFile& log, const UserAct& session, SessionLineConsumer& consumer, bool& goOn) {
  std::string buffer;
  LogPosition at = std::max<LogPosition>(1, session.Position - kLookBack);
  std::string piece(kPiece, '\0');
  while (goOn) {
    const auto count = log.readAt(at, piece);
    if (!count.isOk()) return count.error();
    at += static_cast<LogPosition>(count.value());
    buffer.append(piece, 0, count.value());
    std::size_t begin = 0;
    while (true) {
      std::size_t end = buffer.find('\n', begin);
      if (end == std::string::npos) {
        if (count.value() != 0 || begin == buffer.size()) break;
        end = buffer.size();
      }
      std::string_view text = std::string_view(buffer).substr(begin, end - begin);
      if (!text.empty() && text.back() == '\r') text.remove_suffix(1);
      const SessionLine line{text, containsFolded(text, session.NumberInLog), containsFolded(text, kServerStartMark)};
      if ((line.hasSessionMark || line.hasServerStart) && !consumer.line(line)) return {};
      begin = std::min(end + 1, buffer.size());
    }
    buffer.erase(0, begin);
    goOn = consumer.keepGoing(static_cast<std::uint64_t>(at));
    if (count.value() == 0) return {};
  }
  return {};
}

}  // namespace

Status readSessionLines(const LogFile& log, const SessionSource& source, SessionLineConsumer& consumer) {
  bool goOn = true;
  Status result;
  while (goOn && result.isOk()) {
    const auto session = source();
    if (!session) break;
    const bool isWanted = consumer.beginSession(*session) && session->Position > 0;
    if (isWanted) result = readOneSession(log, *session, consumer, goOn);
    consumer.endSession(*session);
    goOn = goOn && consumer.keepGoing(static_cast<std::uint64_t>(session->Position));
  }
  return result;
}

}  // namespace quorvel
