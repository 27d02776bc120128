// Any bytes through any grammar: what an event says stands in its line, every byte is accounted for, and it makes no
// difference how many threads read the log or in which pieces it grew.
#include "activity/activity_builder.h"
#include "activity/block_parser.h"
#include "activity/ledger_keeper.h"
#include "activity/read_activity.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/support/activity_text.h"
#include "tests/support/memory_source.h"

namespace quorvel::test {
namespace {

constexpr std::size_t kLongestLog = 2 * 1024 * 1024;

void requireInside(std::string_view part, std::string_view line) {
  const std::less_equal<> isBefore;
  require(part.empty() ||
              (isBefore(line.data(), part.data()) && isBefore(part.data() + part.size(), line.data() + line.size())),
          "what an event says stands in its line");
}

void requireInside(const Event& event, std::string_view line) {
  for (const std::string_view part : {event.key, event.text, event.path, event.toPath, event.address})
    requireInside(part, line);
  // A grammar may have names of its own for a guest, and for one that the line names otherwise.
  if (event.user != "anonymous" && event.user != "ftp" && event.user != "root") requireInside(event.user, line);
}

/// All lines by this grammar, whether they are its own or not.
void readBy(const Grammar& grammar, std::uint8_t number, const std::string& log) {
  MemorySource source(log);
  BlockCutter cutter(source);
  cutter.begin(grammar, {});
  ActivityBuilder builder;
  builder.beginLog(0, grammar.traits());
  LedgerKeeper ledger;
  ParsedBlock parsed;
  while (cutter.next(parsed.block, true).value()) {
    parseBlock(grammar, number, parsed);
    ledger.takeMore(parsed.block.continued);
    const std::string_view text = parsed.block.text();
    for (const Event& event : parsed.events) {
      const std::string_view line = text.substr(event.position - parsed.block.position, event.length);
      requireInside(event, line);
      ledger.take(builder.take(event) ? Verdict::Understood : Verdict::SetAside, event, line);
    }
  }
  require(ledger.ledger().bytes() == log.size(), "every byte is accounted for");
  Activity activity;
  builder.addTo(activity);
  std::uint64_t lines = 0;
  for (std::size_t i = 0; i < activity.sessions.size(); ++i)
    lines += activity.sessions[i].lines;
  require(lines <= ledger.ledger().lines(), "a line belongs to one session at most");
  for (std::size_t i = 0; i < activity.actions.size(); ++i)
    require(activity.actions[i].session < activity.sessions.size(), "an action has its session");
}

std::string tablesOf(const Activity& activity, const std::string& log) {
  const ActivityText text(activity, log);
  return text.sessions() + text.logons() + text.actions() + text.setAside();
}

std::string grown(const std::string& log, std::size_t piece) {
  MemorySource source("");
  ActivityReader reader;
  for (std::size_t at = 0; at < log.size(); at += piece) {
    source.append(std::string_view(log).substr(at, piece));
    (void)reader.read(source, {.isGrowing = true});
  }
  const Status status = reader.read(source, {});
  return status.isOk() ? tablesOf(reader.snapshot(), log) : "";
}

}  // namespace

void runTarget(FuzzInput input) {
  const std::size_t piece = 512 + input.byte() * 64;
  const std::string log = input.expandedRest(kLongestLog);
  std::uint8_t number = 0;
  for (const Grammar* grammar : grammars())
    readBy(*grammar, number++, log);

  const Activity one = readActivity(log, {.threads = 1});
  if (one.logs.empty() || one.logs[0].grammar == nullptr) return;
  const std::string tables = tablesOf(one, log);
  require(tables == tablesOf(readActivity(log, {.threads = 2}), log), "two threads read what one reads");
  // A log is recognised by its first lines: those of a log that grew are fewer.
  const bool isSmall = log.size() < 100 * piece;
  if (isSmall && log.find('\n') < piece) require(!grown(log, piece).empty(), "a log that grew is read");
}

}  // namespace quorvel::test
