// Any log: the finder, the lines of sessions, both filters and the counts give what the literal scans give, however
// much of the log is read at once and on whatever processor.
#include <optional>

#include "classic/counter/transfer_counter.h"
#include "classic/find/record_format.h"
#include "classic/find/servu_find_user_info.h"
#include "log/byte_scan.h"
#include "log/byte_scan_variants.h"
#include "tests/classic/reference/literal_scans.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/support/records.h"

namespace quorvel::test {
namespace {

using quorvel::test::describe;
using Lines = std::vector<std::string>;

std::string describe(const std::string& line) {
  return visible(line);
}

/// Shows the first place at which two lists differ.
template <typename T>
void requireSame(const std::string& what, const std::vector<T>& found, const std::vector<T>& expected) {
  if (found == expected) return;
  const auto [f, e] = std::mismatch(found.begin(), found.end(), expected.begin(), expected.end());
  require(false, what + "\nexpected " + (e == expected.end() ? "no more" : describe(*e)) + "\nfound    " +
                     (f == found.end() ? "no more" : describe(*f)));
}

std::vector<UserAct> findSessions(const LogFile& log, const FindOptions& options) {
  struct Records final : FindObserver {
    void onSession(const FoundSession& session) override {
      all.push_back(decodeRecord(session.record).value());
      require(all.back().LogonNo == session.LogonNo && all.back().Position == session.position,
              "a session is told as its record has it");
    }
    bool keepGoing(LogPosition) override { return true; }
    std::vector<UserAct> all;
  } records;
  require(ServuFindUserInfo(log, options, records).value() == FindEnd::Finished, "a log is read to its end");
  return records.all;
}

/// Some of the log's sessions, and some that only say they are: of a damaged record, or of another log.
std::vector<UserAct> chooseSessions(std::vector<UserAct> sessions, const std::string& log, FuzzInput choices) {
  constexpr std::size_t kMost = 12;
  if (sessions.size() > kMost) sessions.resize(kMost);
  for (unsigned more = choices.byte() % 3; more > 0; --more) {
    UserAct session = sessions.empty() ? UserAct() : sessions.front();
    const auto position = static_cast<std::int32_t>(choices.number(4));
    session.Position = choices.flag() ? position : position % static_cast<std::int32_t>(log.size() + 100);
    session.NumberInLog = log.substr(choices.number(3) % (log.size() + 1), kSessionNumberLength - 1);
    session.NumberInLog.resize(kSessionNumberLength, ')');
    session.NumberInLog.back() = ')';
    sessions.push_back(session);
  }
  if (choices.flag()) std::reverse(sessions.begin(), sessions.end());
  return sessions;
}

/// Hands sessions out one by one.
SessionSource sourceOf(std::vector<UserAct> sessions) {
  return [sessions = std::move(sessions), next = std::size_t{0}]() mutable {
    return next < sessions.size() ? std::optional(sessions[next++]) : std::nullopt;
  };
}

/// Notes what is handed out for each session and what both filters choose. Every fifth session is given up on the way,
/// all of them after stopAfter.
struct Reading final : SessionLineConsumer {
  struct Written final : FilterOutput {
    Lines lines;
    bool goesOn = true;
    void writeLine(std::string_view line) override { lines.emplace_back(line); }
  };
  struct Session {
    std::size_t wanted = SIZE_MAX;
    Lines lines;
    Written entire;
    Written commands;
  };

  Reading(CommandFilterOptions switches, std::size_t mostSessions) : stopAfter(mostSessions), commandFilter(switches) {}

  bool beginSession(const UserAct& session) override {
    begun.emplace_back();
    if (begun.size() % 5 == 0) begun.back().wanted = begun.size() % 7;
    entireFilter.begin(session);
    commandFilter.begin(session);
    return begun.back().wanted > 0;
  }
  bool line(const SessionLine& line) override {
    auto& [wanted, lines, entire, commands] = begun.back();
    lines.emplace_back(line.text);
    entire.goesOn = entire.goesOn && entireFilter.line(line, entire);
    commands.goesOn = commands.goesOn && commandFilter.line(line, commands);
    return lines.size() < wanted;
  }
  void endSession(const UserAct&) override { ++ended; }
  bool keepGoing(std::uint64_t) override { return begun.size() < stopAfter; }

  std::size_t stopAfter;
  EntireSessionFilter entireFilter;
  CommandFilter commandFilter;
  std::vector<Session> begun;
  std::size_t ended = 0;
};

void checkSessionLines(const LogFile& file, const std::string& log, const std::vector<UserAct>& sessions,
                       CommandFilterOptions switches, std::size_t blockSize) {
  Reading read(switches, 1);
  Reading readAll(switches, SIZE_MAX);
  for (Reading* reading : {&read, &readAll}) {
    require(readSessionLines(file, sourceOf(sessions), *reading, {blockSize, blockSize}).isOk(), "the log can be read");
    const std::size_t expected = std::min(sessions.size(), reading->stopAfter);
    require(reading->begun.size() == expected && reading->ended == expected, "each session is begun and ended");
  }
  for (std::size_t i = 0; i < sessions.size(); ++i) {
    const auto& [wanted, lines, entire, commands] = readAll.begun[i];
    Lines expected = linesAbout(log, sessions[i]);
    expected.resize(std::min(expected.size(), wanted));
    const std::string what = " of " + describe(sessions[i]);
    requireSame("the lines" + what, lines, expected);
    if (wanted != SIZE_MAX) continue;
    requireSame("all" + what, entire.lines, entireSession(log, sessions[i]));
    requireSame("commands" + what, commands.lines, sessionCommands(log, sessions[i], switches));
  }
}

/// Compares what count adds to the totals and tells the observer.
template <typename Count>
void checkCount(const std::string& what, const CountedTransfers& expected, const Count& count) {
  struct BadLines final : CountObserver {
    Lines lines;
    void onFailedTransfer(std::string_view line, const TransferCount&) override {
      lines.emplace_back(line.substr(std::min<std::size_t>(line.size(), 27)));
    }
    bool keepGoing(LogPosition) override { return true; }
  } bad;
  TransferCount totals;
  require(count(totals, bad).isOk() && totals == expected.totals, "the totals of " + what);
  requireSame("failed transfers of " + what, bad.lines, expected.badLines);
}

void checkCounts(const LogFile& file, const std::string& log, const std::vector<UserAct>& sessions) {
  checkCount("the log", allTransfers(log), [&](TransferCount& totals, CountObserver& observer) {
    return CountAllTransfers(file, {}, totals, observer);
  });
  for (const UserAct& session : sessions) {
    const auto count = [&](TransferCount& totals, CountObserver& observer) {
      return CountSessionTransfers(file, sourceOf({session}), {}, totals, observer);
    };
    checkCount(describe(session), sessionTransfers(log, session), count);
  }
}

/// A machine without wide vectors finds the same places.
void checkPortableScans(std::string log) {
  const std::size_t count = log.size();
  log.append(kScanSlack, ')');
  const auto [events, lines, transfers] = portableByteScan();
  for (const auto& [what, scan] :
       {std::pair(ScanFor::SessionEvents, events), {ScanFor::SessionLines, lines}, {ScanFor::Transfers, transfers}}) {
    std::vector<std::uint32_t> expected;
    scanBytes(what, log.data(), count, expected);
    std::vector<std::uint32_t> found(count + kScanSlack);
    found.resize(scan(log.data(), count, found.data()));
    require(found == expected, "the places that a machine without vectors finds");
  }
}

}  // namespace

void runTarget(FuzzInput input) {
  constexpr std::size_t kLongestLog = 100'000;
  constexpr std::size_t kVeryLongLog = 800'000;
  constexpr std::size_t kSmallestBlock = 3;
  const unsigned choice = input.byte();
  FindOptions options;
  options.trunkLongUsernames = (choice & 16) != 0;
  const std::size_t blockSize = kSmallestBlock + input.number(2);
  const FuzzInput choices = input.take(20);
  const std::string log = input.expandedRest(choice >> 5 == 7 ? kVeryLongLog : kLongestLog);

  const std::vector<UserAct> records = scanSessions(log, options.trunkLongUsernames);
  requireSame("records", findSessions(openLog(log), options), records);
  const LogFile file = openLog(log, log);  // what was added after it was opened is not read
  options.blockSize = blockSize;
  requireSame("records, read " + std::to_string(blockSize) + " bytes at once", findSessions(file, options), records);

  const std::vector<UserAct> sessions = chooseSessions(records, log, choices);
  checkSessionLines(file, log, sessions, {(choice & 1) != 0, (choice & 2) != 0, (choice & 4) != 0, (choice & 8) != 0},
                    blockSize);
  checkCounts(file, log, sessions);
  checkPortableScans(log);
}

}  // namespace quorvel::test
