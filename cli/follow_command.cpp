#include "cli/follow_command.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <numeric>
#include <set>
#include <system_error>
#include <thread>
#include <tuple>

#include "activity/follow_reading.h"
#include "cli/standard_output.h"
#include "cli/time_zone.h"
#include "log/text.h"
#include "report/alerts.h"
#include "report/csv_writer.h"
#include "report/ecs_writer.h"
#include "report/files.h"
#include "report/json_writer.h"
#include "report/raw_tables.h"
#include "report/transfers.h"
#include "report/viewed_table.h"

namespace quorvel {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kFirstLine = "quorvel follow 1\n";
constexpr auto kBetweenLooks = 500ms;
constexpr LogNumber kMostFilesBack = 8;

std::string hexOf(std::string_view bytes) {
  static constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const char c : bytes) {
    text += kDigits[static_cast<unsigned char>(c) >> 4];
    text += kDigits[static_cast<unsigned char>(c) & 15];
  }
  return text;
}

/// Takes a number and the blank or line end behind it.
template <typename Number>
bool takeNumber(std::string_view& text, Number& number, int base = 10) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (error != std::errc() || end == text.data() + text.size()) return false;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()) + 1);
  return true;
}

bool takeHex(std::string_view& text, std::string& bytes) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  if (end % 2 != 0 || end > 2 * kHeadBytes || end == text.size()) return false;
  for (std::size_t at = 0; at < end; at += 2) {
    std::uint8_t value = 0;
    const auto [last, error] = std::from_chars(text.data() + at, text.data() + at + 2, value, 16);
    if (error != std::errc() || last != text.data() + at + 2) return false;
    bytes += static_cast<char>(value);
  }
  text.remove_prefix(end + 1);
  return true;
}

/// Keeps what is written until it is asked for.
class TextOutput final : public Output {
 public:
  [[nodiscard]] const std::string& text() const { return m_kept; }

 protected:
  Status write(std::string_view piece) override {
    m_kept.append(piece);
    return {};
  }

 private:
  std::string m_kept;
};

/// Which rows of tables that grow are to be written: those that had come by the look before.
class NewRows {
 public:
  /// activity: as it is after the look of now.
  Selection take(const Activity& activity) {
    Selection ready;
    ready.logons = from(m_toldLogons, m_logons);
    ready.actions = from(m_toldActions, m_actions);
    m_toldLogons = std::exchange(m_logons, static_cast<RowNumber>(activity.logons.size()));
    m_toldActions = std::exchange(m_actions, static_cast<RowNumber>(activity.actions.size()));
    std::vector<RowNumber> looked = std::exchange(m_open, {});
    for (const RowNumber row : std::exchange(m_ended, {}))
      (isOpen(activity, row) ? looked : ready.sessions).push_back(row);
    for (; m_sessions < activity.sessions.size(); ++m_sessions)
      looked.push_back(m_sessions);
    for (const RowNumber row : looked)
      (isOpen(activity, row) ? m_open : m_ended).push_back(row);
    std::sort(ready.sessions.begin(), ready.sessions.end());
    return ready;
  }
  /// All there is was written by an earlier run, but for sessions that are still open.
  void passAll(const Activity& activity) {
    (void)take(activity);
    (void)take(activity);
  }
  /// The oldest log that a session needs which was not written; count: logs there are.
  [[nodiscard]] LogNumber oldestLog(const Activity& activity, LogNumber newest) const {
    LogNumber oldest = newest;
    for (const auto* rows : {&m_open, &m_ended}) {
      for (const RowNumber row : *rows) {
        const SessionRow& session = activity.sessions[row];
        if (!session.isInferred) oldest = std::min(oldest, session.log);
      }
    }
    return std::max(oldest, static_cast<LogNumber>(newest - std::min(newest, kMostFilesBack)));
  }

 private:
  static std::vector<RowNumber> from(RowNumber begin, RowNumber end) {
    std::vector<RowNumber> rows(end - begin);
    std::iota(rows.begin(), rows.end(), begin);
    return rows;
  }
  static bool isOpen(const Activity& activity, RowNumber row) { return activity.sessions[row].end == SessionEnd::Open; }

  RowNumber m_sessions = 0;  ///< rows before it are in m_open, in m_ended or written
  RowNumber m_logons = 0;    ///< rows before it had come by the last look
  RowNumber m_actions = 0;
  RowNumber m_toldLogons = 0;  ///< rows before it are written
  RowNumber m_toldActions = 0;
  std::vector<RowNumber> m_open;
  std::vector<RowNumber> m_ended;  ///< by the last look
};

std::vector<RowNumber> common(const std::vector<RowNumber>& a, const std::vector<RowNumber>& b) {
  std::vector<RowNumber> both;
  std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(both));
  return both;
}

/// The output as it grows: a file that is cut back to where the state says it ended, or standard output.
class GrowingOutput {
 public:
  GrowingOutput(const Request& request, FileSystem& files) : m_isFile(!request.output.empty()) {
    if (!m_isFile) return;
    auto file = files.open(pathFromBytes(request.output), OpenMode::ReadWrite);
    if (file.isOk())
      m_file = std::move(file.value());
    else
      m_status = file.error();
  }
  /// The first bytes of a file are kept; the others were written by a run that was killed.
  Status keep(std::uint64_t bytes) {
    if (!m_isFile || !m_status.isOk()) return m_status;
    const auto size = m_file->size();
    if (!size.isOk()) return size.error();
    m_length = std::min(bytes, size.value());
    return m_file->resize(m_length);
  }
  Status append(std::string_view text, bool isKept) {
    if (!m_isFile) {
      const auto output = standardOutput();
      output->record() = text;
      return output->finish();
    }
    Status written = m_file->writeAt(m_length, text);
    if (written.isOk()) m_length += text.size();
    if (written.isOk() && isKept) written = m_file->sync();
    return written;
  }
  [[nodiscard]] std::uint64_t length() const { return m_length; }

 private:
  bool m_isFile;
  std::unique_ptr<File> m_file;
  Status m_status;
  std::uint64_t m_length = 0;
};

class Following {
 public:
  Following(const Request& request, const Shell& shell, const std::function<Scope(const Activity&)>& scopeFor,
            const std::function<void(const std::string&)>& tell)
      : m_request(request),
        m_shell(shell),
        m_scopeFor(scopeFor),
        m_tell(tell),
        m_output(request, shell.files),
        m_reading(shell.files, pathFromBytes(request.logs.front()), nameOf(request.logs.front()), unpackPlace()) {}

  int run() {
    if (request().withSiblings) m_reading.beginWithSiblings();
    if (Status done = begin(); !done.isOk()) return fail(done);
    for (int looks = 0;; ++looks) {
      if (Status done = m_reading.look([this] { return !isInterrupted(); }); !done.isOk()) return fail(done);
      tellNotes();
      if (isInterrupted()) break;
      if (std::exchange(m_isResuming, false)) {
        if (m_reading.hasResumed()) m_rows.passAll(m_reading.snapshot());
        if (m_reading.hasResumed()) remember(m_reading.snapshot());
        if (m_reading.hasResumed()) continue;
      }
      if (Status done = writeNew(); !done.isOk()) return fail(done);
      if (!request().isFollowing && ++m_writes == 2) break;
      wait();
      if (isInterrupted()) break;
    }
    // What waited for the next look is written at the end; with a state, by the next run.
    while (request().state.empty() && !m_isWritten) {
      if (Status done = writeNew(); !done.isOk()) return fail(done);
    }
    return m_holdsRule ? 3 : m_hasFailed ? 1 : 0;
  }

 private:
  [[nodiscard]] const Request& request() const { return m_request; }
  static std::string nameOf(const std::string& log) { return pathBytes(pathFromBytes(log).filename()); }
  UnpackPlace unpackPlace() {
    std::error_code error;
    return {std::filesystem::temp_directory_path(error), [this](std::uint64_t) { return !isInterrupted(); }};
  }

  Status begin() {
    if (request().state.empty()) return m_output.keep(0);
    const auto text = m_shell.files.readWhole(pathFromBytes(request().state));
    if (!text.isOk() && text.error().code != ErrorCode::FileNotFound) return text.error();
    const auto state = parseFollowState(text.isOk() ? text.value() : "");
    if (text.isOk() && !state)
      return Error{ErrorCode::PathFileAccess, pathFromBytes(request().state),
                   "This is no state of a log that is followed"};
    if (!state) return m_output.keep(0);
    m_isResuming = true;
    m_reading.resume(state->place, state->from);
    return m_output.keep(state->output);
  }

  Status writeNew() {
    const bool isNew = m_reading.bytesRead() != std::exchange(m_bytesSeen, m_reading.bytesRead());
    m_isWritten = !isNew;
    if (!isNew && m_isQuiet) return {};
    m_isQuiet = !isNew;
    const Activity activity = m_reading.snapshot();
    TextOutput text;
    Status written = request().alerts.empty() ? writeRows(activity, m_rows.take(activity), text)
                     : isNew                  ? writeAlerts(activity, text)
                                              : Status();
    if (written.isOk()) written = text.finish();
    const bool keepsState = !request().state.empty();
    if (written.isOk() && !text.text().empty()) written = m_output.append(text.text(), keepsState);
    if (written.isOk() && keepsState) written = keepState(activity);
    remember(activity);
    return written;
  }

  Status writeRows(const Activity& activity, Selection rows, Output& output) {
    const Scope scope = m_scopeFor(activity);
    if (!scope.isEmpty()) {
      const Selection all = select(activity, scope);
      rows.sessions = common(rows.sessions, all.sessions);
      rows.logons = common(rows.logons, all.logons);
      rows.actions =
          common(rows.actions, request().command == CommandName::Files ? fileActions(activity, scope) : all.actions);
    }
    switch (request().command) {
      case CommandName::Sessions:
        return write(sessionsTable(activity, std::move(rows.sessions)), output);
      case CommandName::Logins:
        return write(logonsTable(activity, std::move(rows.logons)), output);
      case CommandName::Files:
        return write(actionsTable(activity, std::move(rows.actions)), output);
      case CommandName::Transfers:
        return write(
            transfersTable(activity, rows.actions, request().isAll ? TransferChoice::All : TransferChoice::Broken),
            output);
      default:
        return writeEvents(activity, rows, output);
    }
  }

  Status writeEvents(const Activity& activity, const Selection& rows, Output& output) {
    const auto zone = TimeZone::named(request().timeZone);
    if (!zone) return Error{ErrorCode::PathNotFound, request().timeZone, "No such time zone is known"};
    const std::vector<std::string> paths(activity.logs.size(), request().logs.front());
    // The lines themselves may stand in another file by now.
    const EcsOptions options{[&zone](LogTime time) { return zone->toUtc(time); },
                             [](LogNumber, std::uint64_t) { return std::string(); }, paths};
    return writeEcs(activity, rows, options, output);
  }

  Status writeAlerts(const Activity& activity, Output& output) {
    auto alerts = findAlerts(activity, select(activity, m_scopeFor(activity)), request().alerts);
    std::erase_if(alerts, [this, &activity](const Alert& alert) {
      return !m_toldAlerts.emplace(alert.rule, std::string(activity.text(alert.who)), alert.first).second;
    });
    m_holdsRule = m_holdsRule || !alerts.empty();
    return write(alertsTable(activity, request().alerts, std::move(alerts)), output);
  }

  Status write(std::shared_ptr<Table> table, Output& output) {
    if (!request().columns.empty()) {
      TableView view{allRows(table->rowCount()), {}};
      for (const std::string& name : request().columns) {
        const auto column = columnNamed(*table, name);
        if (!column) return Error{ErrorCode::PathFileAccess, name, "There is no such column"};
        view.columns.push_back(*column);
      }
      table = std::make_shared<ViewedTable>(table, std::move(view), table->totalRows());
    }
    if (request().format == Format::JsonLines) return writeJsonLines(*table, output);
    const bool isFirst = m_output.length() == 0 && !std::exchange(m_hasHeader, true);
    return writeCsv(*table, {request().isRaw, isFirst}, output);
  }

  /// Rows that are written were told in front of the place where the look before ended.
  Status keepState(const Activity& activity) {
    if (m_placeBefore.head.empty() || activity.logs.empty()) return {};
    const LogNumber oldest = m_rows.oldestLog(activity, m_newestBefore);
    const FollowState state{m_placeBefore, activity.logs[oldest].ledger.first, m_output.length()};
    return m_shell.files.replaceWhole(pathFromBytes(request().state), stateText(state));
  }
  void remember(const Activity& activity) {
    m_placeBefore = m_reading.place();
    m_newestBefore = static_cast<LogNumber>(std::max<std::size_t>(activity.logs.size(), 1) - 1);
    m_bytesSeen = m_reading.bytesRead();
  }

  void tellNotes() {
    for (const std::string& note : m_reading.takeNotes()) {
      m_hasFailed = true;
      m_tell(note);
    }
  }
  void wait() const {
    for (auto left = kBetweenLooks; left > 0ms && !isInterrupted(); left -= 20ms)
      std::this_thread::sleep_for(20ms);
  }
  [[nodiscard]] bool isInterrupted() const { return m_shell.isInterrupted && m_shell.isInterrupted(); }
  int fail(const Status& status) {
    m_tell(status.error().sentence());
    return 1;
  }

  const Request& m_request;
  const Shell& m_shell;
  const std::function<Scope(const Activity&)>& m_scopeFor;
  const std::function<void(const std::string&)>& m_tell;
  GrowingOutput m_output;
  FollowReading m_reading;
  NewRows m_rows;
  std::set<std::tuple<std::uint16_t, std::string, LogTime>> m_toldAlerts;
  LogPlace m_placeBefore;
  LogNumber m_newestBefore = 0;
  std::uint64_t m_bytesSeen = 0;
  int m_writes = 0;
  bool m_isResuming = false;
  bool m_isWritten = false;  ///< nothing waits for the next look
  bool m_isQuiet = false;    ///< the look before brought nothing
  bool m_hasHeader = false;
  bool m_holdsRule = false;
  bool m_hasFailed = false;
};

}  // namespace

std::string stateText(const FollowState& state) {
  std::string text(kFirstLine);
  for (const std::uint64_t number : {state.place.device, state.place.number, state.place.offset,
                                     static_cast<std::uint64_t>(state.from), state.output})
    text += std::to_string(number) + "\n";
  return text + hexOf(state.place.head) + "\n";
}

std::optional<FollowState> parseFollowState(std::string_view text) {
  if (!text.starts_with(kFirstLine)) return std::nullopt;
  text.remove_prefix(kFirstLine.size());
  FollowState state;
  const bool isWhole = takeNumber(text, state.place.device) && takeNumber(text, state.place.number) &&
                       takeNumber(text, state.place.offset) && takeNumber(text, state.from) &&
                       takeNumber(text, state.output) && takeHex(text, state.place.head);
  if (!isWhole) return std::nullopt;
  return state;
}

int runFollowing(const Request& request, const Shell& shell, const std::function<Scope(const Activity&)>& scopeFor,
                 const std::function<void(const std::string&)>& tell) {
  return Following(request, shell, scopeFor, tell).run();
}

}  // namespace quorvel
