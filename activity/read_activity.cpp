#include "activity/read_activity.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <span>
#include <thread>
#include <utility>

#include "activity/activity_builder.h"
#include "activity/block_cutter.h"
#include "activity/block_parser.h"
#include "activity/ledger_keeper.h"
#include "activity/log_start.h"
#include "grammar/grammar.h"
#include "log/text.h"

namespace quorvel {
namespace {

/// Smaller logs are read before a thread has started.
constexpr std::uint64_t kSmallLog = 2 * BlockCutter::kBlockSize;
constexpr std::uint64_t kProgressStep = 1024 * 1024;

Error notReadable(const std::string& name, std::string_view why) {
  return {ErrorCode::PathFileAccess, pathFromBytes(name), std::string(why)};
}

std::uint8_t numberOf(const Grammar& grammar) {
  const auto all = grammars();
  return static_cast<std::uint8_t>(std::find(all.begin(), all.end(), &grammar) - all.begin());
}

std::string_view withoutLineEnd(std::string_view line) {
  if (line.ends_with('\n')) line.remove_suffix(1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

}  // namespace

class ActivityReader::Impl {
 public:
  Status read(LogSource& source, const ReadOptions& options) {
    if (!m_open || &m_open->source != &source) {
      m_open.emplace(source);
      m_log = nullptr;
    }
    if (m_log == nullptr) {
      const Status begun = beginLog(options);
      if (!begun.isOk() || m_log == nullptr) {
        if (!options.isGrowing) m_open.reset();
        return begun;
      }
    }
    const Status status = readBlocks(options);
    if (!options.isGrowing || !status.isOk()) {
      m_open.reset();
      m_log = nullptr;
    }
    return status;
  }

  Activity snapshot() {
    Activity activity;
    m_builder.addTo(activity);
    for (const auto& log : m_logs) {
      LogInfo& info = activity.logs.emplace_back(log->info);
      info.ledger = log->ledger.ledger();
      if (!log->sourceNote.empty()) info.notes.push_back(log->sourceNote);
      if (log->isContinued) addGap(activity.logs[activity.logs.size() - 2], info);
      if (log->forgottenTransfers > 0)
        info.notes.push_back(
            "More sessions were open at a time than are remembered: " + std::to_string(log->forgottenTransfers) +
            " transfers that waited for their reply were forgotten.");
    }
    return activity;
  }

 private:
  struct OpenLog {
    explicit OpenLog(LogSource& log) : source(log), cutter(log) {}
    LogSource& source;
    BlockCutter cutter;
  };
  struct Log {
    LogInfo info;
    LedgerKeeper ledger;
    bool isContinued = false;  ///< the next file of the log before
    std::size_t firstSession = 0;
    std::uint64_t forgottenBefore = 0;
    std::uint64_t forgottenTransfers = 0;
    std::string sourceNote;
  };

  /// Tells of a day and more that lies between two files of a set.
  static void addGap(const LogInfo& before, LogInfo& log) {
    constexpr LogTime kDay = 24 * 60 * 60;
    if (before.ledger.last == kNoTime || log.ledger.first == kNoTime) return;
    if (log.ledger.first < before.ledger.last || log.ledger.first - before.ledger.last < kDay) return;
    const LogTime days = (log.ledger.first - before.ledger.last) / kDay;
    log.notes.push_back("Between " + before.name + " and " + log.name + " there is nothing for " +
                        std::to_string(days) + (days == 1 ? " day." : " days."));
  }

  /// Recognises the log. A growing one may hold nothing yet: then no log is begun, and all is well.
  Status beginLog(const ReadOptions& options) {
    const std::string name = m_open->source.name();
    const auto start = m_open->cutter.peek();
    if (!start.isOk()) return start.error();
    const std::vector<std::string_view> lines = startLines(start.value());
    const bool hasWholeLine = start.value().find('\n') != std::string_view::npos;
    if (options.isGrowing && (lines.empty() || !hasWholeLine)) return {};
    if (lines.empty()) return notReadable(name, "The log holds no lines");
    const Recognised recognised = recognise({lines, m_open->source.changedTime()}, options.continuesSet);
    if (recognised.grammar == nullptr)
      return notReadable(name, "None of the servers this program knows writes such lines");
    if (m_logs.size() > std::numeric_limits<LogNumber>::max()) return notReadable(name, "There are too many logs");

    m_open->cutter.begin(*recognised.grammar, recognised.dialect);
    m_log = m_logs.emplace_back(std::make_unique<Log>()).get();
    m_log->info.name = name;
    m_log->info.grammar = recognised.grammar;
    m_log->firstSession = m_builder.sessionCount();
    m_log->forgottenBefore = m_builder.forgottenTransfers();
    const auto number = static_cast<LogNumber>(m_logs.size() - 1);
    if (options.continuesSet && number > 0 && m_logs[number - 1u]->info.grammar == recognised.grammar) {
      m_log->isContinued = true;
      m_builder.continueLog(number);
    } else {
      m_builder.beginLog(number, recognised.grammar->traits());
    }
    return skipRepeated(options.repeatedBytes);
  }

  /// The next file of a set is read as the file before it where it can be, however few lines it has.
  [[nodiscard]] Recognised recognise(const LogStart& start, bool continuesSet) const {
    if (continuesSet && !m_logs.empty()) {
      Recognised same{m_logs.back()->info.grammar, {}};
      if (same.grammar->recognise(start, same.dialect) > 0) return same;
    }
    return recogniseLog(start);
  }

  Status skipRepeated(std::uint64_t bytes) {
    if (bytes == 0) return {};
    const auto lines = m_open->cutter.skip(bytes);
    if (!lines.isOk()) return lines.error();
    m_log->ledger.takeRepeated(lines.value(), bytes);
    return {};
  }

  Status readBlocks(const ReadOptions& options) {
    const Grammar& grammar = *m_log->info.grammar;
    const std::uint64_t size = m_open->source.size();
    unsigned threads = options.threads != 0 ? options.threads : std::max(1u, std::thread::hardware_concurrency());
    if (threads == 1 || (size != 0 && size < kSmallLog) || options.isGrowing) threads = 0;
    BlockParser parser(m_open->cutter, grammar, numberOf(grammar), {.threads = threads, .isFinal = !options.isGrowing});
    std::uint64_t told = 0;
    for (;;) {
      const auto parsed = parser.next();
      if (!parsed.isOk()) return parsed.error();
      if (parsed.value() == nullptr) break;
      take(*parsed.value());
      const std::uint64_t read = m_log->ledger.ledger().bytes();
      if (options.keepGoing && read >= told + kProgressStep) {
        told = read;
        if (!options.keepGoing({read, size})) return {};
      }
    }
    m_log->sourceNote = m_open->source.note();
    m_log->info.isComplete = !options.isGrowing;
    return {};
  }

  void take(const ParsedBlock& parsed) {
    if (!parsed.isUtf8) m_log->info.encoding = TextEncoding::Windows1252;
    if (parsed.block.continued > 0) m_log->ledger.takeMore(parsed.block.continued);
    const std::string_view text = parsed.block.text();
    for (const Event& event : parsed.events) {
      Verdict verdict = Verdict::Foreign;
      if (event.kind != EventKind::Foreign) verdict = m_builder.take(event) ? Verdict::Understood : Verdict::SetAside;
      const std::string_view line = text.substr(event.position - parsed.block.position, event.length);
      m_log->ledger.take(verdict, event, withoutLineEnd(line));
    }
    m_log->info.sessions = static_cast<std::uint32_t>(m_builder.sessionCount() - m_log->firstSession);
    m_log->forgottenTransfers = m_builder.forgottenTransfers() - m_log->forgottenBefore;
  }

  ActivityBuilder m_builder;
  std::vector<std::unique_ptr<Log>> m_logs;
  std::optional<OpenLog> m_open;
  Log* m_log = nullptr;  ///< that is read; null before it is recognised
};

ActivityReader::ActivityReader() : m_impl(std::make_unique<Impl>()) {}
ActivityReader::~ActivityReader() = default;

Status ActivityReader::read(LogSource& log, const ReadOptions& options) {
  return m_impl->read(log, options);
}

Activity ActivityReader::snapshot() {
  return m_impl->snapshot();
}

}  // namespace quorvel
