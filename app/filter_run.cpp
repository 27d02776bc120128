#include "app/filter_run.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "app/session_sources.h"
#include "classic/filter/session_filter.h"
#include "classic/lines/current_lines.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::size_t kShownPiece = 256 * 1024;
constexpr std::string_view kNoMatch = "DID NOT FIND ANY MATCH FOR THE SELECTED FILTER(S)";

/// The switches of the command filter, in the order of CommandFilterOptions.
constexpr std::array<std::string_view, 4> kCommandFilterKeys = {"FilterTransfers", "FilterDeletes", "FilterSITE",
                                                                "filterMDTM"};

/// The command filter when one of its options is 1, else null.
std::unique_ptr<LineRule> makeCommandFilter(const CommandContext& context, FilterHeader header) {
  std::array<std::int32_t, kCommandFilterKeys.size()> values{};
  std::transform(kCommandFilterKeys.begin(), kCommandFilterKeys.end(), values.begin(),
                 [&context](std::string_view key) { return context.settings.readNumber("OPTION-FILTER", key); });
  if (std::find(values.begin(), values.end(), 1) == values.end()) return nullptr;
  const auto& [transfers, deletes, site, mdtm] = values;
  const bool isCurrent = context.state.logShape == LogShape::Current;
  return std::make_unique<CommandFilter>(
      CommandFilterOptions{transfers != 0, deletes != 0, site != 0, mdtm != 0, isCurrent}, header);
}

void deleteFilterFile(CommandContext& context) {
  const auto path = context.state.filterFilePath();
  if (context.files.Exist(path)) (void)context.files.remove(path);
}

/// Hands what a filter takes to its target, and lets the interface run meanwhile.
class FilterRun final : public SessionTextTarget {
 public:
  FilterRun(CommandContext& context, const SessionList& sessions, FilterTarget& target, bool showsProgress)
      : m_context(context), m_sessions(sessions), m_target(target), m_showsProgress(showsProgress) {}

  [[nodiscard]] const FilterOutcome& outcome() const { return m_outcome; }
  /// Of the last session that was written; only valid where there was one.
  [[nodiscard]] std::size_t lastSession() const { return m_last; }
  /// Every session was ended, the last one not because of a stop.
  [[nodiscard]] bool hasAll() const { return m_ended == m_sessions.size() && !m_endsEarly; }

  void write(std::string_view piece) override {
    begin();
    m_target.write(piece);
  }
  void endSession(std::size_t index, std::uint32_t lines) override {
    ++m_ended;
    if (m_sessions.position(index) == 0) return;
    begin();
    m_target.endSession();
    m_last = index;
    ++m_outcome.sessions;
    m_outcome.lines += lines;
  }
  bool keepGoing(LogPosition position) override {
    if (m_context.pacer.isDueAmongMany()) {
      m_target.flush();
      if (m_showsProgress) m_context.view.setProgress(position);
      m_context.view.yield();
    }
    const bool goesOn = !m_context.state.stopFlag && m_target.isOk();
    m_endsEarly = !goesOn && m_ended < m_sessions.size();
    return goesOn;
  }

 private:
  void begin() {
    if (!std::exchange(m_hasBegun, true)) deleteFilterFile(m_context);
  }

  CommandContext& m_context;
  const SessionList& m_sessions;
  FilterTarget& m_target;
  const bool m_showsProgress;
  FilterOutcome m_outcome;
  std::size_t m_last = 0;
  std::size_t m_ended = 0;
  bool m_endsEarly = false;  ///< a session that is ended now is cut short
  bool m_hasBegun = false;
};

/// Shows filtered lines in the filter window.
class FilterWindowTarget final : public FilterTarget {
 public:
  explicit FilterWindowTarget(CommandContext& context) : m_context(context) {}

  [[nodiscard]] bool hasShown() const { return m_hasShown; }
  /// All that was shown, to be remembered; empty when it was too long.
  [[nodiscard]] std::string takeShown() { return m_shown.size() > FilterMemory::kLargest ? "" : std::move(m_shown); }

  /// Shows a text that was filtered before.
  void showAgain(std::string_view text) {
    m_shown.resize(FilterMemory::kLargest + 1);
    show(text);
  }

  void write(std::string_view piece) override {
    m_text.append(piece);
    if (m_text.size() >= kShownPiece) flush();
  }
  void endSession() override { flush(); }
  void flush() override {
    show(m_text);
    m_text.clear();
  }
  [[nodiscard]] bool isOk() const override { return true; }

 private:
  void show(std::string_view text) {
    if (m_shown.size() <= FilterMemory::kLargest) m_shown.append(text);
    while (!text.empty() && !m_context.state.stopFlag) {
      m_hasShown = true;
      m_context.view.appendFilterText(text.substr(0, kShownPiece));
      text.remove_prefix(std::min(kShownPiece, text.size()));
      if (!text.empty() && m_context.pacer.isDue()) m_context.view.yield();
    }
  }

  CommandContext& m_context;
  std::string m_text;
  std::string m_shown;
  bool m_hasShown = false;
};

/// What the filter window's text depends on; empty when the log cannot tell its state.
std::optional<FilterMemory::Key> memoryKey(CommandContext& context, const LogFile& log, const UserAct& session) {
  const auto stamp = context.files.stamp(log.path());
  if (!stamp.isOk()) return std::nullopt;
  std::string options;
  for (const std::string_view key : kCommandFilterKeys) {
    options += std::to_string(context.settings.readNumber("OPTION-FILTER", key)) + ' ';
  }
  return FilterMemory::Key{log.path(), stamp.value(), session, std::move(options)};
}

FilterOutcome runFilter(CommandContext& context, const LogFile& log, SessionList& sessions, LineRule& rule,
                        FilterTarget& target, FilterRun& run) {
  if (sessions.size() > 0) context.view.setFilterText({});
  context.state.stopFlag = false;
  const auto readLines = context.state.logShape == LogShape::Current ? readCurrentLines : readSessionLines;
  Status read = readLines(log, sessions, rule, run, {context.files, context.state.workingFolder});
  target.flush();
  FilterOutcome outcome = run.outcome();
  outcome.read = std::move(read);
  outcome.wasStopped = std::exchange(context.state.stopFlag, false) && !run.hasAll();
  return outcome;
}

}  // namespace

FilterOutcome filterIntoWindow(CommandContext& context, const LogFile& log, const UserAct& session) {
  FilterWindowTarget window(context);
  const auto key = memoryKey(context, log, session);
  if (const std::string* const text = key ? context.state.filterMemory.find(*key) : nullptr) {
    context.state.stopFlag = false;
    context.view.setFilterText({});
    deleteFilterFile(context);
    window.showAgain(*text);
    context.state.stopFlag = false;
    return {};
  }
  EntireSessionFilter entire(FilterHeader::None);
  const auto commands = makeCommandFilter(context, FilterHeader::None);
  OneSession sessions(session);
  FilterRun run(context, sessions, window, false);
  FilterOutcome outcome =
      runFilter(context, log, sessions, commands ? *commands : static_cast<LineRule&>(entire), window, run);
  if (commands && !window.hasShown()) context.view.setFilterText(kNoMatch);
  std::string shown = window.takeShown();
  if (key && outcome.read.isOk() && !outcome.wasStopped && !shown.empty()) {
    context.state.filterMemory.put(*key, std::move(shown));
  }
  return outcome;
}

FilterOutcome filterIntoFile(CommandContext& context, const LogFile& log, SessionList& sessions, ResultsFile& results) {
  EntireSessionFilter entire(FilterHeader::Block);
  const auto commands = makeCommandFilter(context, FilterHeader::Block);
  LineRule& rule = commands ? *commands : static_cast<LineRule&>(entire);
  FilterRun run(context, sessions, results, true);
  FilterOutcome outcome = runFilter(context, log, sessions, rule, results, run);
  if (commands && sessions.size() > 0) context.view.setFilterText(kNoMatch);
  if (results.hasBlock()) {
    const std::size_t headerSize = rule.header(sessions.session(run.lastSession())).size();
    (void)results.copyLastLines(headerSize, context.state.filterFilePath());
  }
  return outcome;
}

}  // namespace quorvel
