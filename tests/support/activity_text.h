// Short logs and the tables they make, as text a reader can check by hand.
//
// In a log, each line stands as bracket, session number and text: `2 1 USER alice` is
// `[2] Mon 06Jun05 08:00:03 - (000001) USER alice` on the third line: every line is a second later than the one before.
// A hyphen stands for no bracket or no number. In the tables, lines are told by their numbers: `@3` is the position,
// and the time, of the third line.
#pragma once

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "activity/read_activity.h"
#include "grammar/civil_time.h"
#include "tests/support/memory_source.h"

namespace quorvel::test {

enum class LogShape {
  Classic,  ///< brackets of one digit
  Current,  ///< of two
};

inline std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    if (end > 0) lines.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

/// The log that short lines stand for. A line that begins with '=' stands as it is.
inline std::string logOf(std::string_view shortLines, LogShape shape) {
  std::string log;
  int second = 0;
  for (std::string_view line : linesOf(shortLines)) {
    ++second;
    if (line.starts_with('=')) {
      log.append(line.substr(1)).append("\r\n");
      continue;
    }
    const auto word = [&line] {
      const std::string_view front = line.substr(0, line.find(' '));
      line.remove_prefix(std::min(front.size() + 1, line.size()));
      return std::string(front);
    };
    const std::string bracket = word();
    const std::string number = word();
    char stamp[64];
    std::snprintf(stamp, sizeof stamp, "Mon 06Jun%s 08:%02d:%02d - ", shape == LogShape::Classic ? "05" : "22",
                  second / 60, second % 60);
    if (bracket != "-") log += "[" + bracket + "] ";
    log += stamp;
    if (number != "-")
      log.append("(").append(6 - std::min<std::size_t>(number.size(), 6), '0').append(number).append(") ");
    log.append(line).append("\r\n");
  }
  return log;
}

/// The tables as text, one row a line: only what is there is told.
class ActivityText {
 public:
  ActivityText(const Activity& activity, std::string_view log) : m_activity(activity) {
    for (std::size_t at = 0; at < log.size(); at = log.find('\n', at) + 1) {
      m_positions.push_back(at + 1);
      if (log.find('\n', at) == std::string_view::npos) break;
    }
  }

  [[nodiscard]] std::string sessions() const {
    std::string all;
    for (std::size_t i = 0; i < m_activity.sessions.size(); ++i)
      all += row(m_activity.sessions[i]) + "\n";
    return all;
  }
  [[nodiscard]] std::string logons() const {
    std::string all;
    for (std::size_t i = 0; i < m_activity.logons.size(); ++i)
      all += row(m_activity.logons[i]) + "\n";
    return all;
  }
  [[nodiscard]] std::string actions() const {
    std::string all;
    for (std::size_t i = 0; i < m_activity.actions.size(); ++i)
      all += row(m_activity.actions[i]) + "\n";
    return all;
  }
  [[nodiscard]] std::string setAside() const {
    std::string all;
    for (const LogInfo& log : m_activity.logs)
      for (const SetAsideShape& shape : log.ledger.shapes)
        all += std::to_string(shape.lines) + " @" + lineAt(shape.position) + " " + shape.shape + "\n";
    return all;
  }

 private:
  [[nodiscard]] std::string row(const SessionRow& session) const {
    std::string text = name(session.key) + " " + name(session.user) + " " + name(session.address) + " ";
    text.append(session.outcome == LogonResult::Unknown ? "-" : logonResultName(session.outcome)).append(" ");
    text.append(sessionEndName(session.end));
    text += " @" + lineAt(session.position) + "-" + lineAt(session.lastPosition) + " lines " +
            std::to_string(session.lines);
    if (session.connected != session.first) text += " connected " + time(session.connected);
    if (session.loggedOn != kNoTime) text += " on " + time(session.loggedOn);
    if (time(session.ended) != lineAt(session.lastPosition)) text += " ended " + time(session.ended);
    if (session.downloads > 0)
      text += " down " + std::to_string(session.downloads) + "/" + std::to_string(session.downloadBytes);
    if (session.uploads > 0)
      text += " up " + std::to_string(session.uploads) + "/" + std::to_string(session.uploadBytes);
    count(text, "broken", session.failedTransfers);
    count(text, "deletes", session.deletes);
    count(text, "renames", session.renames);
    count(text, "refused", session.failedLogons);
    if (session.isInferred) text += " inferred";
    return text;
  }

  [[nodiscard]] std::string row(const LogonRow& logon) const {
    std::string text = std::to_string(logon.session + 1) + " " + place(logon.position, logon.time) + " ";
    text += name(logon.user) + " " + name(logon.address) + " ";
    text.append(logonResultName(logon.result));
    if (logon.reply != 0) text.append(" ").append(replyName(logon.reply));
    return text;
  }

  [[nodiscard]] std::string row(const ActionRow& action) const {
    constexpr std::string_view kOutcomes[] = {"?", "ok", "failed"};
    std::string text = std::to_string(action.session + 1) + " " + place(action.position, action.time) + " ";
    text += name(action.user) + " ";
    text.append(actionName(action.action)).append(" ").append(kOutcomes[static_cast<std::size_t>(action.outcome)]);
    text.append(" ").append(name(action.path));
    if (action.toPath != kNoText) text.append(" -> ").append(name(action.toPath));
    if (action.folder != kNoText) text.append(" in ").append(name(action.folder));
    if (action.bytes >= 0) text += " bytes " + std::to_string(action.bytes);
    if (action.seconds >= 0) text += " seconds " + std::to_string(action.seconds);
    if (action.cause != FailureCause::None) text.append(" ").append(failureCauseName(action.cause));
    if (action.reply != 0) text.append(" ").append(replyName(action.reply));
    return text;
  }

  static void count(std::string& text, std::string_view name, std::uint32_t number) {
    if (number > 0) text.append(" ").append(name).append(" ").append(std::to_string(number));
  }
  [[nodiscard]] std::string name(TextId id) const { return id == kNoText ? "-" : std::string(m_activity.text(id)); }
  [[nodiscard]] std::string lineAt(std::uint64_t position) const {
    const auto found = std::lower_bound(m_positions.begin(), m_positions.end(), position);
    if (found == m_positions.end() || *found != position) return std::to_string(position).insert(0, 1, '?');
    return std::to_string(found - m_positions.begin() + 1);
  }
  /// The number of the line that was written then.
  [[nodiscard]] static std::string time(LogTime time) {
    return time == kNoTime ? "-" : std::to_string(time % 86400 - 8 * 3600);
  }
  [[nodiscard]] std::string place(std::uint64_t position, LogTime at) const {
    const std::string line = lineAt(position);
    return "@" + line + (time(at) == line ? "" : " time " + time(at));
  }

  const Activity& m_activity;
  std::vector<std::uint64_t> m_positions;  ///< of the lines
};

/// Reads a log to its end; a log that cannot be read makes empty tables and its sentence the only log's name.
inline Activity readActivity(const std::string& log, const ReadOptions& options = {}) {
  MemorySource source(log);
  ActivityReader reader;
  const Status status = reader.read(source, options);
  Activity activity = reader.snapshot();
  if (!status.isOk()) activity.logs.emplace_back().name = status.error().sentence();
  return activity;
}

}  // namespace quorvel::test
