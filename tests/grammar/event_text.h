// Events as one line of text, for tables of lines and what they say: only what is set is told.
#pragma once

#include <array>
#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>

#include "grammar/grammar.h"

namespace quorvel::test {

inline std::string timeText(LogTime time) {
  const std::chrono::sys_seconds at{std::chrono::seconds{time}};
  const auto day = std::chrono::floor<std::chrono::days>(at);
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss clock{at - day};
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d", int{date.year()}, unsigned{date.month()},
                unsigned{date.day()}, int(clock.hours().count()), int(clock.minutes().count()),
                int(clock.seconds().count()));
  return text.data();
}

inline std::string eventText(const Event& event) {
  constexpr std::array kKinds = {"Unknown", "Known",    "Foreign",    "ServerStart", "Connect",
                                 "Command", "Reply",    "Request",    "Answer",      "LoggedOn",
                                 "Refused", "Transfer", "FileChange", "Close",       "LoggedOut"};
  constexpr std::array kOutcomes = {"?", "ok", "failed"};
  const bool isFile = event.kind == EventKind::Transfer || event.kind == EventKind::FileChange;
  std::string text = kKinds[static_cast<std::size_t>(event.kind)];
  const auto add = [&text](std::string_view name, std::string_view value) {
    if (!value.empty()) text.append(" ").append(name).append("=").append(value);
  };
  if (isFile)
    text.append(" ")
        .append(actionName(event.action))
        .append(" ")
        .append(kOutcomes[static_cast<std::size_t>(event.outcome)]);
  if (event.isAborted) text += " aborted";
  if (event.kind == EventKind::Refused) text.append(" ").append(logonResultName(event.refusal));
  if (event.verb != Verb::Other) text += " verb=" + std::to_string(static_cast<int>(event.verb));
  add("reply", replyName(event.reply));
  add("key", event.key);
  add("user", event.user);
  add("address", event.address);
  add("path", event.path);
  add("to", event.toPath);
  if (event.bytes >= 0) text += " bytes=" + std::to_string(event.bytes);
  if (event.seconds >= 0) text += " seconds=" + std::to_string(event.seconds);
  add("text", event.text);
  return text;
}

/// What a grammar makes of one line, without its time.
inline std::string read(const Grammar& grammar, std::string_view line, const Dialect& dialect = {}) {
  Event event;
  grammar.parse(line, dialect, event);
  return eventText(event);
}

inline std::string readTime(const Grammar& grammar, std::string_view line, const Dialect& dialect = {}) {
  Event event;
  grammar.parse(line, dialect, event);
  return event.time == kNoTime ? "none" : timeText(event.time);
}

/// A line and what it says.
struct LineCase {
  std::string_view line;
  std::string_view event;
};

}  // namespace quorvel::test
