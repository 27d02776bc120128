#include "app/filter_run.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "app/session_sources.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::size_t kShownPiece = 256 * 1024;
constexpr std::string_view kNoMatch = "DID NOT FIND ANY MATCH FOR THE SELECTED FILTER(S)";

/// The switches of the command filter, in the order of CommandFilterOptions.
constexpr std::array<std::string_view, 4> kCommandFilterKeys = {"FilterTransfers", "FilterDeletes", "FilterSITE",
                                                                "filterMDTM"};

/// The command filter when one of its options is 1, else null.
std::unique_ptr<SessionFilter> makeCommandFilter(const Settings& settings) {
  std::array<std::int32_t, kCommandFilterKeys.size()> values{};
  std::transform(kCommandFilterKeys.begin(), kCommandFilterKeys.end(), values.begin(),
                 [&settings](std::string_view key) { return settings.readNumber("OPTION-FILTER", key); });
  if (std::find(values.begin(), values.end(), 1) == values.end()) return nullptr;
  const auto& [transfers, deletes, site, mdtm] = values;
  return std::make_unique<CommandFilter>(CommandFilterOptions{transfers != 0, deletes != 0, site != 0, mdtm != 0});
}

void deleteFilterFile(CommandContext& context) {
  const auto path = context.state.filterFilePath();
  if (context.files.Exist(path)) (void)context.files.remove(path);
}

class FilterRun final : public SessionLineConsumer {
 public:
  FilterRun(CommandContext& context, SessionFilter& filter, FilterTarget& target, bool showsProgress)
      : m_context(context), m_filter(filter), m_target(target), m_showsProgress(showsProgress) {}

  [[nodiscard]] bool hasRun() const { return m_hasRun; }

  bool beginSession(const UserAct& session) override {
    if (!std::exchange(m_hasRun, true)) m_context.view.setFilterText({});
    if (session.Position == 0) return false;
    if (!std::exchange(m_hasOutput, true)) deleteFilterFile(m_context);
    m_target.beginSession(session);
    m_filter.begin(session);
    return m_target.isOk();
  }
  bool line(const SessionLine& line) override { return m_filter.line(line, m_target); }
  void endSession(const UserAct& session) override {
    if (session.Position != 0) m_target.endSession();
  }
  bool keepGoing(std::uint64_t position) override {
    if (m_context.pacer.isDueAmongMany()) {
      m_target.flush();
      if (m_showsProgress) m_context.view.setProgress(static_cast<std::int64_t>(position));
      m_context.view.yield();
    }
    return !m_context.state.stopFlag && m_target.isOk();
  }

 private:
  CommandContext& m_context;
  SessionFilter& m_filter;
  FilterTarget& m_target;
  bool m_showsProgress;
  bool m_hasRun = false;
  bool m_hasOutput = false;
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

  void beginSession(const UserAct&) override {}
  void writeLine(std::string_view line) override {
    if (line.size() >= kShownPiece) {
      flush();
      show(line);
      line = {};
    }
    m_text.append(line).append(kLineEnd);
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

struct FilterOutcome {
  Status read;
  bool hasRunCommandFilter = false;
  bool wasStopped = false;
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

FilterOutcome runFilter(CommandContext& context, const LogFile& log, const SessionSource& sessions,
                        FilterTarget& target, bool showsProgress) {
  const auto commandFilter = makeCommandFilter(context.settings);
  EntireSessionFilter entireFilter;
  FilterRun run(context, commandFilter ? *commandFilter : static_cast<SessionFilter&>(entireFilter), target,
                showsProgress);
  FilterOutcome outcome;
  context.state.stopFlag = false;
  outcome.read = readSessionLines(log, sessions, run);
  target.flush();
  outcome.wasStopped = std::exchange(context.state.stopFlag, false);
  outcome.hasRunCommandFilter = commandFilter && run.hasRun();
  return outcome;
}

}  // namespace

Status filterIntoWindow(CommandContext& context, const LogFile& log, const UserAct& session) {
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
  FilterOutcome outcome = runFilter(context, log, oneSession(session), window, false);
  if (outcome.hasRunCommandFilter && !window.hasShown()) context.view.setFilterText(kNoMatch);
  std::string shown = window.takeShown();
  if (key && outcome.read.isOk() && !outcome.wasStopped && !shown.empty()) {
    context.state.filterMemory.put(*key, std::move(shown));
  }
  return outcome.read;
}

Status filterIntoFile(CommandContext& context, const LogFile& log, const SessionSource& sessions,
                      ResultsFile& results) {
  const FilterOutcome outcome = runFilter(context, log, sessions, results, true);
  if (outcome.hasRunCommandFilter) context.view.setFilterText(kNoMatch);
  return outcome.read;
}

}  // namespace quorvel
