#include "cli/digest.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "cli/answers.h"
#include "log/text.h"
#include "report/cell_text.h"

namespace quorvel {
namespace {

constexpr std::string_view kFirstLine = "quorvel digest 1\n";
constexpr std::size_t kMostAlerts = 10'000;
constexpr std::size_t kMostNames = 10;

/// FNV-1a; what it tells apart is ours.
std::uint64_t hashOf(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (const char c : text)
    hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
  return hash;
}

std::optional<std::uint64_t> takeNumber(std::string_view& line, int base) {
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number, base);
  if (error != std::errc()) return std::nullopt;
  line.remove_prefix(static_cast<std::size_t>(end - line.data()));
  return number;
}

bool take(std::string_view& line, std::string_view text) {
  if (!line.starts_with(text)) return false;
  line.remove_prefix(text.size());
  return true;
}

/// `log 1234 2005-06-06T08:00:00 ftp-server.log`
std::optional<DigestState::Log> parseLog(std::string_view line) {
  const auto bytes = takeNumber(line, 10);
  if (!bytes || !take(line, " ")) return std::nullopt;
  const std::size_t end = std::min(line.find(' '), line.size());
  DigestState::Log log{"", std::string(line.substr(0, end)), *bytes};
  log.name = line.substr(std::min(end + 1, line.size()));
  return log;
}

class DigestMaker {
 public:
  DigestMaker(const Request& request, const Activity& activity, const Scope& scope, DigestState told)
      : m_request(request), m_activity(activity), m_all(select(activity, scope)), m_told(std::move(told)) {}

  Digest make() {
    rememberLogs();
    const Selection news = newRows();
    Digest digest;
    digest.report.title = "Digest of " + logNames(m_activity);
    auto parts = overviewParts(m_activity, news, m_request.thresholds);
    parts.front().sentences = sentences(news);
    if (auto alerts = newAlerts(); !alerts.empty()) {
      digest.holdsRule = true;
      ReportPart part = alertsPart(m_activity, m_request.alerts, std::move(alerts));
      part.title = "Alerts";
      parts.insert(parts.begin() + 1, std::move(part));
    }
    digest.report.parts = std::move(parts);
    digest.state = std::move(m_state);
    return digest;
  }

 private:
  /// Where each log's news begin: behind what was told of it, unless it is another log by now.
  void rememberLogs() {
    for (const LogInfo& log : m_activity.logs) {
      const DigestState::Log now{plain(log.name), timeText(log.ledger.first), log.ledger.bytes()};
      const auto told = std::find_if(m_told.logs.begin(), m_told.logs.end(), [&](const DigestState::Log& old) {
        return old.name == now.name && old.first == now.first && old.bytes <= now.bytes;
      });
      m_newFrom.push_back(told == m_told.logs.end() ? 1 : told->bytes + 1);
      m_state.logs.push_back(now);
    }
    for (const DigestState::Log& old : m_told.logs) {
      const bool isRead = std::any_of(m_state.logs.begin(), m_state.logs.end(),
                                      [&old](const DigestState::Log& now) { return now.name == old.name; });
      if (!isRead) m_state.logs.push_back(old);
    }
  }

  [[nodiscard]] Selection newRows() const {
    Selection news = m_all;
    const auto isOld = [this](LogNumber log, std::uint64_t position) { return position < m_newFrom[log]; };
    std::erase_if(news.sessions, [&](RowNumber row) {
      return isOld(m_activity.sessions[row].lastLog, m_activity.sessions[row].lastPosition);
    });
    std::erase_if(news.logons,
                  [&](RowNumber row) { return isOld(m_activity.logons[row].log, m_activity.logons[row].position); });
    std::erase_if(news.actions,
                  [&](RowNumber row) { return isOld(m_activity.actions[row].log, m_activity.actions[row].position); });
    return news;
  }

  [[nodiscard]] std::vector<std::string> sentences(const Selection& news) const {
    std::vector<std::string> told;
    const bool isFirst = m_told.logs.empty();
    told.push_back(isFirst ? "This is the first digest: it tells of all there is."
                           : "New since the last digest: " + countOf(news.sessions.size(), "session") + ", " +
                                 countOf(news.logons.size(), "attempt") + " to log on, " +
                                 countOf(news.actions.size(), "file action") + ".");
    if (isFirst) return told;
    if (auto names = firstSeen(news, &SessionRow::user); !names.empty())
      told.push_back("Users seen for the first time: " + names + ".");
    if (auto names = firstSeen(news, &SessionRow::address); !names.empty())
      told.push_back("Addresses seen for the first time: " + names + ".");
    return told;
  }

  /// Texts of new sessions that no session has which was told.
  [[nodiscard]] std::string firstSeen(const Selection& news, TextId SessionRow::*field) const {
    std::vector<bool> isNew(m_activity.sessions.size());
    for (const RowNumber row : news.sessions)
      isNew[row] = true;
    std::vector<bool> known(m_activity.texts.size());
    known[kNoText] = true;
    for (const RowNumber row : m_all.sessions) {
      if (!isNew[row]) known[m_activity.sessions[row].*field] = true;
    }
    std::string names;
    std::size_t count = 0;
    for (const RowNumber row : news.sessions) {
      const SessionRow& session = m_activity.sessions[row];
      if (known[session.*field]) continue;
      known[session.*field] = true;
      if (++count > kMostNames) continue;
      names.append(names.empty() ? "" : ", ");
      names.append(utf8Of(m_activity.text(session.*field), m_activity.logs[session.log].encoding));
    }
    return count > kMostNames ? names + " and " + std::to_string(count - kMostNames) + " more" : names;
  }

  /// Those that were not told, and remembers all.
  std::vector<Alert> newAlerts() {
    std::vector<Alert> alerts = findAlerts(m_activity, m_all, m_request.alerts);
    std::erase_if(alerts, [this](const Alert& alert) {
      const std::uint64_t hash =
          hashOf(m_request.alerts[alert.rule].text + '\0' + std::string(m_activity.text(alert.who)) + '\0' +
                 timeText(alert.first) + '\0' + m_activity.logs[alert.log].name);
      m_state.alerts.push_back(hash);
      return std::find(m_told.alerts.begin(), m_told.alerts.end(), hash) != m_told.alerts.end();
    });
    return alerts;
  }

  /// A name that fits into one line of the state.
  static std::string plain(std::string_view name) { return withoutControls(validUtf8(name)); }

  const Request& m_request;
  const Activity& m_activity;
  Selection m_all;
  DigestState m_told;
  DigestState m_state;
  std::vector<std::uint64_t> m_newFrom;  ///< by log
};

}  // namespace

std::string stateText(const DigestState& state) {
  std::string text(kFirstLine);
  for (const DigestState::Log& log : state.logs)
    text += "log " + std::to_string(log.bytes) + " " + log.first + " " + log.name + "\n";
  const std::size_t count = std::min(state.alerts.size(), kMostAlerts);
  for (auto alert = state.alerts.end() - static_cast<std::ptrdiff_t>(count); alert != state.alerts.end(); ++alert) {
    std::array<char, 16> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), *alert, 16).ptr;
    text.append("alert ").append(digits.data(), static_cast<std::size_t>(end - digits.data())).append("\n");
  }
  return text;
}

DigestState parseState(std::string_view text) {
  DigestState state;
  if (!take(text, kFirstLine)) return state;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (take(line, "log ")) {
      if (auto log = parseLog(line)) state.logs.push_back(std::move(*log));
    } else if (take(line, "alert ")) {
      if (const auto alert = takeNumber(line, 16)) state.alerts.push_back(*alert);
    }
  }
  return state;
}

Result<Digest> makeDigest(const Request& request, FileSystem& files, const Activity& activity, const Scope& scope) {
  DigestState told;
  if (!request.state.empty()) {
    const auto text = files.readWhole(request.state);
    if (!text.isOk() && text.error().code != ErrorCode::FileNotFound) return text.error();
    if (text.isOk()) told = parseState(text.value());
  }
  return DigestMaker(request, activity, scope, std::move(told)).make();
}

Status keepDigestState(const Request& request, FileSystem& files, const Digest& digest) {
  return request.state.empty() ? Status() : files.replaceWhole(request.state, stateText(digest.state));
}

}  // namespace quorvel
