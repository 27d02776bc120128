#include "cli/named_commands.h"

#include <algorithm>
#include <chrono>
#include <ctime>

#include "cli/answers.h"
#include "cli/digest.h"
#include "cli/export_tables.h"
#include "cli/follow_command.h"
#include "cli/log_reading.h"
#include "cli/request.h"
#include "cli/standard_output.h"
#include "cli/time_zone.h"
#include "log/clock.h"
#include "log/text.h"
#include "report/cell_text.h"
#include "report/csv_writer.h"
#include "report/html_writer.h"
#include "report/json_writer.h"
#include "report/raw_tables.h"
#include "report/text_writer.h"
#include "report/viewed_table.h"

namespace quorvel {
namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kWrongArguments = 2;
constexpr int kRuleHeld = 3;

void tell(const Shell& shell, const std::string& sentence) {
  shell.errors << "quorvel: " << withoutControls(validUtf8(sentence)) << std::endl;
}

/// A table whose texts a terminal may be given.
class HarmlessTable final : public Table {
 public:
  explicit HarmlessTable(const Table& table) : m_table(table) {}
  [[nodiscard]] std::string_view name() const override { return m_table.name(); }
  [[nodiscard]] std::span<const Column> columns() const override { return m_table.columns(); }
  [[nodiscard]] std::size_t rowCount() const override { return m_table.rowCount(); }
  [[nodiscard]] std::size_t totalRows() const override { return m_table.totalRows(); }
  [[nodiscard]] Cell cell(std::size_t row, std::size_t column) const override {
    Cell cell = m_table.cell(row, column);
    if (cell.kind != CellKind::Text) return cell;
    m_text = withoutControls(cell.text);
    cell.text = m_text;
    return cell;
  }

 private:
  const Table& m_table;
  mutable std::string m_text;
};

class NamedCommand {
 public:
  NamedCommand(const Request& request, const Shell& shell) : m_request(request), m_shell(shell) {}

  int run() {
    for (const std::string& log : m_request.logs) {
      if (!m_request.output.empty() && log != "-" && isSameFile(pathFromBytes(m_request.output), pathFromBytes(log)))
        return fail(m_request.output + ": this is a log; results cannot be written into it.");
    }
    if (!m_request.timeZone.empty() && !TimeZone::named(m_request.timeZone)) {
      tell("--timezone: \"" + m_request.timeZone + "\" is no time zone that this system knows.");
      return kWrongArguments;
    }
    const auto tellThis = [this](const std::string& sentence) { tell(sentence); };
    if (m_request.isContinued())
      return runFollowing(
          m_request, m_shell, [this](const Activity& activity) { return scopeFor(activity); }, tellThis);
    const LogReading reading = readLogs(m_shell.files, {m_request.logs, m_request.isSet, m_request.withSiblings},
                                        tellThis, m_shell.isInterrupted);
    if (reading.isInterrupted) return fail("Interrupted; nothing was written.");
    if (reading.activity.logs.empty()) return kFailed;
    const int status = answerFrom(reading);
    return reading.hasFailed ? kFailed : status;
  }

 private:
  int answerFrom(const LogReading& reading) {
    const Activity& activity = reading.activity;
    const Scope scope = scopeFor(activity);
    if (m_request.command == CommandName::Export) return ended(exportTables(m_request, m_shell.files, reading, scope));
    if (m_request.command == CommandName::Digest) return writeDigest(activity, scope);
    if (!m_request.alerts.empty()) return writeAlerts(activity, select(activity, scope));
    const int status = write(answer(m_request, activity, scope), activity.logs.size() > 1);
    if (status != kDone || !m_request.setAside) return status;
    return findAlerts(activity, {}, std::span(&*m_request.setAside, 1)).empty() ? kDone : kRuleHeld;
  }

  /// Only what a rule holds on is written, and nothing where none does.
  int writeAlerts(const Activity& activity, const Selection& selection) {
    std::vector<Alert> alerts = findAlerts(activity, selection, m_request.alerts);
    if (alerts.empty() && m_request.output.empty()) return kDone;
    const bool holds = !alerts.empty();
    Report report;
    report.title = "Alerts of " + logNames(activity);
    report.parts.push_back(alertsPart(activity, m_request.alerts, std::move(alerts)));
    report.parts.back().whenEmpty = "No rule holds.";
    const int status = write(std::move(report), activity.logs.size() > 1);
    return status == kDone && holds ? kRuleHeld : status;
  }

  int writeDigest(const Activity& activity, const Scope& scope) {
    auto digest = makeDigest(m_request, m_shell.files, activity, scope);
    if (!digest.isOk()) return fail(digest.error().sentence());
    const bool holds = digest.value().holdsRule;
    const int status = write(std::move(digest.value().report), false);
    if (status != kDone) return status;
    if (const Status kept = keepDigestState(m_request, m_shell.files, digest.value()); !kept.isOk())
      return fail(kept.error().sentence());
    return holds ? kRuleHeld : kDone;
  }

  /// The period is meant on the log's clock.
  [[nodiscard]] Scope scopeFor(const Activity& activity) const {
    const bool isUtc = std::all_of(activity.logs.begin(), activity.logs.end(), [](const LogInfo& log) {
      return log.grammar != nullptr && log.grammar->traits().isUtc;
    });
    const DateTime local = localNow();
    const auto localTime = parseWhen(local.date + "T" + local.time, 0, false).value_or(kNoTime);
    const LogTime now = isUtc ? static_cast<LogTime>(std::time(nullptr)) : localTime;
    Scope scope;
    scope.words = m_request.words;
    scope.from = parseWhen(m_request.from, now, false).value_or(kNoTime);
    scope.to = parseWhen(m_request.to, now, true).value_or(kNoTime);
    return scope;
  }

  int write(Report report, bool hasSeveralLogs) {
    if (auto mistake = chooseRows(report, hasSeveralLogs)) {
      tell(*mistake);
      return kWrongArguments;
    }
    auto output = open();
    if (!output.isOk()) return fail(output.error().sentence());
    Status written = writeTo(report, *output.value());
    if (written.isOk()) written = output.value()->finish();
    return ended(written);
  }

  Status writeTo(const Report& report, Output& output) {
    const bool isForTerminal = m_request.output.empty() && m_shell.width > 0;
    const Table& first = *report.parts.front().table;
    const HarmlessTable harmless(first);
    const Table& table = isForTerminal ? static_cast<const Table&>(harmless) : first;
    switch (m_request.format) {
      case Format::Csv:
        return writeCsv(table, {m_request.isRaw}, output);
      case Format::JsonLines:
        return writeJsonLines(table, output);
      case Format::Html:
        return writeHtml(report, output);
      default:
        return writeText(report, {isForTerminal ? m_shell.width : 0, isForTerminal && m_shell.isColoured}, output);
    }
  }

  [[nodiscard]] Result<std::unique_ptr<Output>> open() const {
    return m_request.output.empty() ? standardOutput() : openOutput(m_shell.files, pathFromBytes(m_request.output));
  }

  /// Puts the rows and columns asked for in the place of every table's usual ones; --sort, --limit and --columns are
  /// about the first. A sentence where there is no such column.
  [[nodiscard]] std::optional<std::string> chooseRows(Report& report, bool hasSeveralLogs) const {
    const bool isForPeople = m_request.format == Format::Text || m_request.format == Format::Html;
    bool isFirst = true;
    for (ReportPart& part : report.parts) {
      if (part.table == nullptr) continue;
      TableView view{allRows(part.table->rowCount()), isForPeople ? mainColumns(*part.table) : allColumns(*part.table)};
      std::size_t totals = part.table->totalRows();
      if (hasSeveralLogs && isForPeople) showLogs(*part.table, view);
      if (std::exchange(isFirst, false)) {
        if (auto mistake = choose(*part.table, view)) return mistake;
      }
      part.table = std::make_shared<ViewedTable>(part.table, std::move(view), totals);
    }
    return std::nullopt;
  }

  static void showLogs(const Table& table, TableView& view) {
    const auto log = columnNamed(table, "log");
    if (log && std::find(view.columns.begin(), view.columns.end(), *log) == view.columns.end())
      view.columns.insert(view.columns.begin(), *log);
  }

  [[nodiscard]] std::optional<std::string> choose(const Table& table, TableView& view) const {
    if (!m_request.columns.empty()) {
      view.columns.clear();
      for (const std::string& name : m_request.columns) {
        const auto column = columnNamed(table, name);
        if (!column) return noColumn(table, name);
        view.columns.push_back(*column);
      }
    }
    if (!m_request.sort.empty()) {
      const auto column = columnNamed(table, m_request.sort);
      if (!column) return noColumn(table, m_request.sort);
      view.rows = sortedRows(table, *column, m_request.isReversed);
    } else if (m_request.isReversed) {
      std::reverse(view.rows.begin(), view.rows.end() - static_cast<std::ptrdiff_t>(table.totalRows()));
    }
    const std::size_t rows = view.rows.size() - table.totalRows();
    if (m_request.limit && *m_request.limit < rows) {
      const auto begin = view.rows.begin();
      view.rows.erase(begin + static_cast<std::ptrdiff_t>(*m_request.limit), begin + static_cast<std::ptrdiff_t>(rows));
    }
    return std::nullopt;
  }

  static std::string noColumn(const Table& table, const std::string& name) {
    std::string names;
    for (const Column& column : table.columns())
      names.append(names.empty() ? "" : ", ").append(column.name);
    return "There is no column \"" + name + "\"; there are " + names + ".";
  }

  int ended(const Status& status) { return status.isOk() ? kDone : fail(status.error().sentence()); }
  int fail(const std::string& sentence) {
    tell(sentence);
    return kFailed;
  }
  void tell(const std::string& sentence) { quorvel::tell(m_shell, sentence); }

  const Request& m_request;
  const Shell& m_shell;
};

}  // namespace

int runNamedCommand(std::span<const std::string> arguments, const Shell& shell) {
  const auto parsed = parseRequest(arguments);
  if (const auto* const wrong = std::get_if<WrongArguments>(&parsed)) {
    tell(shell, wrong->sentence);
    return kWrongArguments;
  }
  if (const auto* const help = std::get_if<HelpText>(&parsed)) {
    const auto output = standardOutput();
    output->record() = help->text;
    return output->finish().isOk() ? kDone : kFailed;
  }
  return NamedCommand(std::get<Request>(parsed), shell).run();
}

}  // namespace quorvel
