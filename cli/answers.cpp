#include "cli/answers.h"

#include <utility>

#include "log/text.h"
#include "report/cell_text.h"
#include "report/check.h"
#include "report/files.h"
#include "report/overview.h"
#include "report/raw_tables.h"
#include "report/transfers.h"

namespace quorvel {
namespace {

/// Bars of more days than this are drawn by month.
constexpr std::size_t kMostDays = 92;

ReportPart tablePart(std::string title, std::unique_ptr<Table> table, std::string whenEmpty,
                     PartForm form = PartForm::Rows) {
  return {std::move(title), {}, std::move(table), form, std::move(whenEmpty)};
}

std::string byOf(const Request& request) {
  return request.by.empty() ? "" : request.by.front();
}

ReportPart logins(const Request& request, const Activity& activity, const Selection& selection) {
  constexpr const char* kNone = "Nobody tried to log on.";
  if (byOf(request) == "attempt") return tablePart("", logonsTable(activity, selection.logons), kNone);
  const LoginsBy by = byOf(request) == "user" ? LoginsBy::User : LoginsBy::Address;
  return tablePart("", loginsTable(activity, selection.logons, by, request.thresholds), kNone);
}

ReportPart files(const Request& request, const Activity& activity, const Scope& scope) {
  constexpr const char* kNone = "Nothing happened to such files.";
  const std::vector<RowNumber> rows = fileActions(activity, scope);
  if (byOf(request) == "folder") return tablePart("", foldersTable(activity, rows), kNone);
  return tablePart("", actionsTable(activity, rows), kNone);
}

ReportPart traffic(const Request& request, const Activity& activity, const Selection& selection) {
  std::vector<TrafficKey> keys;
  for (const std::string& name : request.by) {
    if (const auto key = trafficKey(name)) keys.push_back(*key);
  }
  if (keys.empty()) keys.push_back(TrafficKey::Day);
  const bool isDrawn = keys.size() == 1;
  return tablePart("", trafficTable(activity, selection.actions, keys), "Nothing went over.",
                   isDrawn && request.format == Format::Html ? PartForm::Bars : PartForm::Rows);
}

std::vector<ReportPart> check(const Request& request, const Activity& activity) {
  std::vector<ReportPart> parts;
  if (byOf(request) != "shape") {
    parts.push_back(tablePart("", checkTable(activity), ""));
    parts.back().sentences = checkSentences(activity);
  }
  auto shapes = setAsideTable(activity);
  if (shapes->rowCount() > 0 || byOf(request) == "shape")
    parts.push_back(tablePart("Lines set aside", std::move(shapes), "No line was set aside."));
  return parts;
}

std::string titleOf(CommandName command) {
  switch (command) {
    case CommandName::Overview:
      return "Overview";
    case CommandName::Sessions:
      return "Sessions";
    case CommandName::Logins:
      return "Log-ons";
    case CommandName::Files:
      return "Files";
    case CommandName::Transfers:
      return "Transfers";
    case CommandName::Traffic:
      return "Traffic";
    case CommandName::Check:
      return "Check";
    case CommandName::Export:
    case CommandName::Digest:
      break;
  }
  return "Digest";
}

}  // namespace

std::vector<ReportPart> overviewParts(const Activity& activity, const Selection& selection,
                                      const Thresholds& thresholds) {
  Overview all = overview(activity, selection, thresholds);
  std::vector<ReportPart> parts;
  parts.push_back(tablePart("", std::move(all.summary), "", PartForm::Record));
  ReportPart& findings = parts.emplace_back();
  findings.title = "Look at first";
  for (const Finding& finding : all.findings)
    findings.sentences.push_back((finding.isUrgent ? "! " : ". ") + finding.sentence);
  if (all.findings.empty()) findings.sentences = {"Nothing stands out.", lookedFor(thresholds)};
  constexpr const char* kNothing = "Nothing went over.";
  if (all.days->rowCount() > kMostDays) {
    constexpr std::array kByMonth = {TrafficKey::Month};
    parts.push_back(
        tablePart("Bytes a month", trafficTable(activity, selection.actions, kByMonth), kNothing, PartForm::Bars));
  } else {
    parts.push_back(tablePart("Bytes a day", std::move(all.days), kNothing, PartForm::Bars));
  }
  parts.push_back(tablePart("Bytes by weekday and hour", std::move(all.week), "", PartForm::WeekGrid));
  parts.push_back(tablePart("Top users", std::move(all.topUsers), kNothing));
  parts.push_back(tablePart("Addresses refused most", std::move(all.topAddresses), "Nobody was refused."));
  parts.push_back(tablePart("Most active folders", std::move(all.topFolders), "Nothing was done to files."));
  return parts;
}

ReportPart alertsPart(const Activity& activity, std::span<const AlertRule> rules, std::vector<Alert> alerts) {
  return tablePart("", alertsTable(activity, rules, std::move(alerts)), "");
}

std::string logNames(const Activity& activity) {
  if (activity.logs.empty()) return "no log";
  const std::string first = validUtf8(activity.logs.front().name);
  const std::size_t others = activity.logs.size() - 1;
  return others == 0 ? first : first + " and " + countOf(others, "other");
}

Report answer(const Request& request, const Activity& activity, const Scope& scope) {
  Report report;
  report.title = titleOf(request.command) + " of " + logNames(activity);
  const Selection selection = request.command == CommandName::Check ? Selection() : select(activity, scope);
  switch (request.command) {
    case CommandName::Overview:
      report.parts = overviewParts(activity, selection, request.thresholds);
      break;
    case CommandName::Sessions:
      report.parts.push_back(tablePart("", sessionsTable(activity, selection.sessions), "There are no such sessions."));
      break;
    case CommandName::Logins:
      report.parts.push_back(logins(request, activity, selection));
      break;
    case CommandName::Files:
      report.parts.push_back(files(request, activity, scope));
      break;
    case CommandName::Transfers:
      report.parts.push_back(tablePart(
          "", transfersTable(activity, selection.actions, request.isAll ? TransferChoice::All : TransferChoice::Broken),
          request.isAll ? "Nothing was transferred." : "No transfer broke off."));
      break;
    case CommandName::Traffic:
      report.parts.push_back(traffic(request, activity, selection));
      break;
    default:
      report.parts = check(request, activity);
      break;
  }
  return report;
}

}  // namespace quorvel
