#include "tests/reference/comparison.h"

#include <algorithm>
#include <optional>

#include "counter/transfer_counter.h"
#include "filter/session_filter.h"
#include "tests/reference/session_scan.h"
#include "tests/support/memory_log.h"
#include "tests/support/records.h"

namespace quorvel::test {
namespace {

using quorvel::test::describe;

std::string describe(const std::string& line) {
  return visible(line);
}

/// The first place at which two lists differ; empty: nowhere.
template <typename T>
std::string difference(const std::string& what, const std::vector<T>& found, const std::vector<T>& expected) {
  if (found == expected) return {};
  const auto [f, e] = std::mismatch(found.begin(), found.end(), expected.begin(), expected.end());
  return what + "\nexpected " + (e == expected.end() ? "no more" : describe(*e)) + "\nfound    " +
         (f == found.end() ? "no more" : describe(*f));
}

struct Written final : FilterOutput {
  std::vector<std::string> lines;
  void writeLine(std::string_view line) override { lines.emplace_back(line); }
};

/// Takes the lines of sessions and compares them at each session's end. Every fifth session is given up on the way.
class SessionCheck final : public SessionLineConsumer {
 public:
  SessionCheck(std::string_view log, CommandFilterOptions switches)
      : m_log(log), m_switches(switches), m_commandFilter(switches) {}

  bool beginSession(const UserAct& session) override {
    ++m_begun;
    m_lines.clear();
    m_entire = m_commands = Written();
    m_inEntire = m_inCommands = session.Position != 0;
    m_entireFilter.begin(session);
    m_commandFilter.begin(session);
    m_wanted = m_begun % 5 != 0 ? m_log.size() + 1 : m_begun % 7;
    return m_wanted > 0;
  }
  bool line(const SessionLine& line) override {
    m_lines.emplace_back(line.text);
    m_inEntire = m_inEntire && m_entireFilter.line(line, m_entire);
    m_inCommands = m_inCommands && m_commandFilter.line(line, m_commands);
    return m_lines.size() < m_wanted;
  }
  void endSession(const UserAct& session) override {
    ++m_ended;
    if (stopAfter != SIZE_MAX) return;
    std::vector<std::string> expected = linesAbout(m_log, session);
    expected.resize(std::min(expected.size(), m_wanted));
    const std::string what = " of " + describe(session);
    if (m_result.empty()) m_result = difference("the lines" + what, m_lines, expected);
    if (m_begun % 5 == 0) return;
    if (m_result.empty()) m_result = difference("all" + what, m_entire.lines, entireSession(m_log, session));
    if (m_result.empty())
      m_result = difference("commands" + what, m_commands.lines, sessionCommands(m_log, session, m_switches));
  }
  bool keepGoing(std::uint64_t) override { return m_begun < stopAfter; }

  [[nodiscard]] std::string result(std::size_t sessions) const {
    if (m_begun == std::min(sessions, stopAfter) && m_ended == m_begun) return m_result;
    return std::to_string(m_begun) + " sessions begun, " + std::to_string(m_ended) + " ended";
  }

  std::size_t stopAfter = SIZE_MAX;

 private:
  std::string_view m_log;
  CommandFilterOptions m_switches;
  EntireSessionFilter m_entireFilter;
  CommandFilter m_commandFilter;
  std::vector<std::string> m_lines;
  Written m_entire;
  Written m_commands;
  bool m_inEntire = false;
  bool m_inCommands = false;
  std::size_t m_wanted = 0;
  std::size_t m_begun = 0;
  std::size_t m_ended = 0;
  std::string m_result;
};

struct BadLines final : CountObserver {
  std::vector<std::string> lines;
  void onFailedTransfer(std::string_view line, const TransferCount&) override {
    lines.emplace_back(line.substr(std::min<std::size_t>(line.size(), 27)));
  }
  bool keepGoing(LogPosition) override { return true; }
};

/// Compares what count adds to the totals and tells the observer.
template <typename Count>
std::string compareCount(const std::string& log, const CountedTransfers& expected, const Count& count) {
  constexpr std::size_t kLongestShownWhole = 250'000;
  TransferCount totals;
  BadLines bad;
  if (!count(totals, bad).isOk()) return "the log cannot be read";
  if (totals != expected.totals) return "the totals";
  if (log.size() < kLongestShownWhole) return difference("bad transfers", bad.lines, expected.badLines);
  return bad.lines.size() == expected.badLines.size() ? "" : "the number of bad transfers";
}

}  // namespace

std::vector<UserAct> findSessions(const std::string& log, const FindOptions& options) {
  struct Records final : FindObserver {
    void onSession(const UserAct& record) override { all.push_back(record); }
    bool keepGoing(LogPosition) override { return true; }
    std::vector<UserAct> all;
  } records;
  const auto end = ServuFindUserInfo(openLog(log), options, records);
  if (!end.isOk() || end.value() != FindEnd::Finished) records.all.emplace_back();  // differs from every record
  return std::move(records.all);
}

SessionSource sourceOf(const std::vector<UserAct>& sessions) {
  return [&sessions, next = std::size_t{0}]() mutable {
    return next < sessions.size() ? std::optional(sessions[next++]) : std::nullopt;
  };
}

std::string compareFinder(const std::string& log, const FindOptions& options) {
  return difference("records, read " + std::to_string(options.blockSize) + " bytes at once", findSessions(log, options),
                    scanSessions(log, options.trunkLongUsernames));
}

std::string compareSessionLines(const std::string& log, const std::vector<UserAct>& sessions,
                                CommandFilterOptions switches, std::size_t blockSize) {
  for (const std::size_t stopAfter : {std::size_t{SIZE_MAX}, std::size_t{1}}) {
    SessionCheck check(log, switches);
    check.stopAfter = stopAfter;
    if (!readSessionLines(openLog(log), sourceOf(sessions), check, {blockSize, blockSize}).isOk())
      return "the log cannot be read";
    const std::string result = check.result(sessions.size());
    if (!result.empty()) return result + "\nread " + std::to_string(blockSize) + " bytes at once";
  }
  return {};
}

std::string compareCounts(const std::string& log, const std::vector<UserAct>& sessions) {
  const LogFile file = openLog(log);
  for (const UserAct& session : sessions) {
    const std::vector<UserAct> alone{session};
    const std::string result =
        compareCount(log, sessionTransfers(log, session), [&](TransferCount& totals, CountObserver& observer) {
          return CountSessionTransfers(file, sourceOf(alone), {}, totals, observer);
        });
    if (!result.empty()) return result + " of " + describe(session);
  }
  return compareCount(log, allTransfers(log), [&](TransferCount& totals, CountObserver& observer) {
    return CountAllTransfers(file, {}, totals, observer);
  });
}

}  // namespace quorvel::test
