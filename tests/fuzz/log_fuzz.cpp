// Any log: the finder, the lines of sessions, both filters and the counts give what the literal scans give, however
// much of the log is read at once and on whatever processor.
#include <functional>
#include <utility>

#include "classic/counter/transfer_counter.h"
#include "classic/filter/session_filter.h"
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

class Sessions final : public SessionList {
 public:
  explicit Sessions(std::vector<UserAct> sessions) : m_sessions(std::move(sessions)) {}
  [[nodiscard]] std::size_t size() const override { return m_sessions.size(); }
  [[nodiscard]] LogPosition position(std::size_t index) const override { return m_sessions[index].Position; }
  [[nodiscard]] const UserAct& session(std::size_t index) override { return m_sessions[index]; }

 private:
  std::vector<UserAct> m_sessions;
};

/// Keeps the text of each session and ends the reading after so many of them.
struct Texts final : SessionTextTarget {
  explicit Texts(std::size_t mostSessions) : stopAfter(mostSessions) {}

  void write(std::string_view piece) override { text += piece; }
  void endSession(std::size_t index, std::uint32_t count) override {
    require(index == all.size(), "sessions come out in their order");
    require(count <= static_cast<std::uint32_t>(std::count(text.begin(), text.end(), '\n')), "its lines are counted");
    all.push_back(std::exchange(text, {}));
  }
  bool keepGoing(LogPosition) override { return all.size() < stopAfter; }

  std::size_t stopAfter;
  std::string text;
  std::vector<std::string> all;
};

Lines linesIn(std::string_view text) {
  Lines lines;
  for (; !text.empty(); text.remove_prefix(lines.back().size() + 2))
    lines.emplace_back(text.substr(0, text.find("\r\n")));
  return lines;
}

/// What a filter takes for each session, however little of the log or of the texts is in memory.
void checkFilter(const LogFile& file, const std::vector<UserAct>& sessions, LineRule& rule, std::size_t blockSize,
                 const std::function<Lines(const UserAct&)>& expected) {
  MemoryFiles files;
  const LineReading reading{files, "folder", blockSize, blockSize};
  Sessions list(sessions);
  Texts all(SIZE_MAX);
  require(readSessionLines(file, list, rule, all, reading).isOk(), "the log can be read");
  require(all.all.size() == sessions.size(), "each session is ended");
  for (std::size_t i = 0; i < sessions.size(); ++i) {
    requireSame("the lines of " + describe(sessions[i]), linesIn(all.all[i]), expected(sessions[i]));
  }
  Texts first(1);
  (void)readSessionLines(file, list, rule, first, reading);
  require(first.all.size() <= std::min<std::size_t>(1, sessions.size()), "a reading that is stopped ends");
  requireNone(first.all.empty() || first.all[0] == all.all[0] ? "" : "the first session is written whole");
}

void checkFilters(const LogFile& file, const std::string& log, const std::vector<UserAct>& sessions,
                  CommandFilterOptions switches, std::size_t blockSize) {
  EntireSessionFilter entire(FilterHeader::None);
  checkFilter(file, sessions, entire, blockSize, [&](const UserAct& session) { return entireSession(log, session); });
  CommandFilter commands(switches, FilterHeader::None);
  checkFilter(file, sessions, commands, blockSize,
              [&](const UserAct& session) { return sessionCommands(log, session, switches); });
}

void addTo(CountedTransfers& sum, const CountedTransfers& more) {
  sum.totals.SentFiles += more.totals.SentFiles;
  sum.totals.ReceivedFiles += more.totals.ReceivedFiles;
  sum.totals.SendErrors += more.totals.SendErrors;
  sum.totals.ReceiveErrors += more.totals.ReceiveErrors;
  addBytes(sum.totals.BytesSent, more.totals.BytesSent);
  addBytes(sum.totals.BytesReceived, more.totals.BytesReceived);
  sum.badLines.insert(sum.badLines.end(), more.badLines.begin(), more.badLines.end());
}

/// Compares what count adds to the totals and tells the observer.
template <typename Count>
void checkCount(const std::string& what, const CountedTransfers& expected, const Count& count) {
  struct BadLines final : CountObserver {
    Lines lines;
    void onFailedTransfer(std::string_view line, bool) override {
      lines.emplace_back(line.substr(std::min<std::size_t>(line.size(), 27)));
    }
    bool keepGoing(LogPosition) override { return true; }
  } bad;
  TransferCount totals;
  require(count(totals, bad).isOk() && totals == expected.totals, "the totals of " + what);
  requireSame("failed transfers of " + what, bad.lines, expected.badLines);
}

void checkCounts(const LogFile& file, const std::string& log, const std::vector<UserAct>& sessions,
                 std::size_t blockSize) {
  MemoryFiles files;
  const CountOptions options{.countBytes = true, .showsFailures = true};
  checkCount("the log", allTransfers(log), [&](TransferCount& totals, CountObserver& observer) {
    return CountAllTransfers(file, options, totals, observer, blockSize);
  });
  CountedTransfers expected;
  for (const UserAct& session : sessions)
    addTo(expected, sessionTransfers(log, session));
  checkCount("all sessions", expected, [&](TransferCount& totals, CountObserver& observer) {
    Sessions list(sessions);
    return CountSessionTransfers(file, list, options, totals, observer, {files, "folder", blockSize, blockSize});
  });
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
  checkFilters(file, log, sessions, {(choice & 1) != 0, (choice & 2) != 0, (choice & 4) != 0, (choice & 8) != 0},
               blockSize);
  checkCounts(file, log, sessions, blockSize);
  checkPortableScans(log);
}

}  // namespace quorvel::test
