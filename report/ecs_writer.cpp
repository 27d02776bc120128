#include "report/ecs_writer.h"

#include <algorithm>
#include <filesystem>
#include <tuple>

#include "activity/ledger_keeper.h"
#include "log/log_source.h"
#include "log/text.h"
#include "report/cell_text.h"
#include "report/json_writer.h"
#include "report/paths.h"

namespace quorvel {
namespace {

constexpr std::size_t kLongestOriginal = 4096;

/// Something to write, in the place of its line.
struct PlacedEvent {
  enum class Kind : std::uint8_t {
    Start,
    Logon,
    Action,
    End
  };
  std::uint64_t position;
  RowNumber row;
  LogNumber log;
  Kind kind;
  friend bool operator<(const PlacedEvent& a, const PlacedEvent& b) {
    return std::tie(a.log, a.position, a.kind, a.row) < std::tie(b.log, b.position, b.kind, b.row);
  }
};

std::vector<PlacedEvent> eventsOf(const Activity& activity, const Selection& selection) {
  std::vector<PlacedEvent> events;
  events.reserve(2 * selection.sessions.size() + selection.logons.size() + selection.actions.size());
  for (const RowNumber row : selection.sessions) {
    const SessionRow& session = activity.sessions[row];
    events.push_back({session.position, row, session.log, PlacedEvent::Kind::Start});
    if (session.end != SessionEnd::Open)
      events.push_back({session.lastPosition, row, session.lastLog, PlacedEvent::Kind::End});
  }
  for (const RowNumber row : selection.logons)
    events.push_back({activity.logons[row].position, row, activity.logons[row].log, PlacedEvent::Kind::Logon});
  for (const RowNumber row : selection.actions)
    events.push_back({activity.actions[row].position, row, activity.actions[row].log, PlacedEvent::Kind::Action});
  std::sort(events.begin(), events.end());
  return events;
}

bool isIpAddress(std::string_view text) {
  const bool isV6 = text.find(':') != std::string_view::npos &&
                    text.find_first_not_of("0123456789abcdefABCDEF:.") == std::string_view::npos;
  const bool isV4 =
      std::count(text.begin(), text.end(), '.') == 3 && text.find_first_not_of("0123456789.") == std::string_view::npos;
  return isV6 || isV4;
}

struct ActionWords {
  std::string_view action;
  std::string_view type;
};
/// By FileAction.
constexpr std::array<ActionWords, 6> kActionWords = {{{"file-download", "access"},
                                                      {"file-upload", "creation"},
                                                      {"file-delete", "deletion"},
                                                      {"file-rename", "change"},
                                                      {"folder-create", "creation"},
                                                      {"folder-delete", "deletion"}}};

class EcsWriter {
 public:
  EcsWriter(const Activity& activity, const EcsOptions& options, Output& output)
      : m_activity(activity), m_options(options), m_output(output) {}

  Status write(const PlacedEvent& event) {
    m_log = event.log;
    m_position = event.position;
    m_record = &m_output.record();
    switch (event.kind) {
      case PlacedEvent::Kind::Start:
        session(m_activity.sessions[event.row], true);
        break;
      case PlacedEvent::Kind::End:
        session(m_activity.sessions[event.row], false);
        break;
      case PlacedEvent::Kind::Logon:
        logon(m_activity.logons[event.row]);
        break;
      case PlacedEvent::Kind::Action:
        action(m_activity.actions[event.row]);
        break;
    }
    m_record->append("}\n");
    return m_output.endRecord();
  }

 private:
  void session(const SessionRow& row, bool isStart) {
    begin(isStart ? row.first : row.ended);
    name("event").append(R"({"kind":"event","category":["network","session"],"type":[)");
    m_record->append(isStart ? R"("connection","start"],"action":"session-start")"
                             : R"("connection","end"],"action":"session-end")");
    constexpr std::int64_t kNanoseconds = 1'000'000'000;
    if (!isStart && row.seconds() >= 0)
      m_record->append(",\"duration\":").append(std::to_string(row.seconds() * kNanoseconds));
    endEvent();
    common(row.user, row.address, row.server, 0);
  }

  void logon(const LogonRow& row) {
    begin(row.time);
    name("event").append(R"({"kind":"event","category":["authentication"],"type":["start"],"action":"logon")");
    outcome(row.isOk() ? Outcome::Ok : Outcome::Failed);
    if (!row.isOk()) field("reason", logonResultName(row.result));
    code(row.reply);
    endEvent();
    common(row.user, row.address, m_activity.sessions[row.session].server, row.reply);
  }

  void action(const ActionRow& row) {
    const ActionWords& words = kActionWords[static_cast<std::size_t>(row.action)];
    begin(row.time);
    name("event").append(R"({"kind":"event","category":["file"],"type":[)");
    appendJsonText(*m_record, words.type);
    m_record->append("]");
    field("action", words.action);
    outcome(row.outcome);
    code(row.reply);
    field("reason", failureCauseName(row.cause));
    endEvent();
    common(row.user, row.address, m_activity.sessions[row.session].server, row.reply);
    file(row);
  }

  void file(const ActionRow& row) {
    const std::string path = fullPath(m_activity.text(row.folder), m_activity.text(row.path));
    const TextEncoding encoding = m_activity.logs[row.log].encoding;
    name("file").append("{\"path\":");
    appendJsonText(*m_record, utf8Of(path, encoding));
    field("name", utf8Of(fileNameOf(path), encoding));
    if (row.bytes >= 0) m_record->append(",\"size\":").append(std::to_string(row.bytes));
    if (row.toPath != kNoText) field("target_path", text(row.toPath));
    m_record->append("}");
  }

  void begin(LogTime time) {
    m_record->append("{");
    if (time != kNoTime) m_record->append("\"@timestamp\":\"").append(utcText(time)).append("\",");
    m_record->append(R"("ecs":{"version":"8.11.0"})");
  }

  [[nodiscard]] std::string utcText(LogTime time) const {
    const Grammar* const grammar = m_activity.logs[m_log].grammar;
    const bool isUtc = grammar != nullptr && grammar->traits().isUtc;
    const std::int64_t utc = isUtc ? std::int64_t{time} : m_options.toUtc(time);
    return timeText(static_cast<LogTime>(std::clamp<std::int64_t>(utc, 1, UINT32_MAX))) + ".000Z";
  }

  void common(TextId user, TextId address, std::uint8_t server, ReplyCode reply) {
    if (address != kNoText) {
      const std::string shown = text(address);
      name("source").append("{\"address\":");
      appendJsonText(*m_record, shown);
      if (isIpAddress(shown)) field("ip", shown);
      m_record->append("}");
    }
    if (user != kNoText) {
      name("user").append("{\"name\":");
      appendJsonText(*m_record, text(user));
      m_record->append("}");
    }
    const auto all = grammars();
    const bool isSftp =
        reply >= kSftpStatus || (server < all.size() && all[server]->name().find("sftp") != std::string_view::npos);
    name("network").append(isSftp ? R"({"protocol":"sftp"})" : R"({"protocol":"ftp"})");
    name("log").append(R"({"file":{"path":)");
    appendJsonText(*m_record, validUtf8(m_options.paths[m_log]));
    m_record->append("}}");
  }

  void outcome(Outcome outcome) {
    if (outcome != Outcome::Unknown) return field("outcome", outcome == Outcome::Ok ? "success" : "failure");
    field("outcome", "unknown");
  }
  void code(ReplyCode reply) { field("code", replyName(reply)); }

  /// The line itself stands last in the event's own object.
  void endEvent() {
    const std::string line = m_options.lineAt(m_log, m_position);
    if (!line.empty()) field("original", utf8Of(withoutPasswords(line), m_activity.logs[m_log].encoding));
    m_record->append("}");
  }

  /// A name of the outermost object.
  std::string& name(std::string_view name) { return m_record->append(",\"").append(name).append("\":"); }
  /// One more text in an object that has some; nothing where it is empty.
  void field(std::string_view name, std::string_view value) {
    if (value.empty()) return;
    m_record->append(",\"").append(name).append("\":");
    appendJsonText(*m_record, value);
  }
  [[nodiscard]] std::string text(TextId id) const {
    return utf8Of(m_activity.text(id), m_activity.logs[m_log].encoding);
  }

  const Activity& m_activity;
  const EcsOptions& m_options;
  Output& m_output;
  std::string* m_record = nullptr;
  LogNumber m_log = 0;
  std::uint64_t m_position = 0;
};

}  // namespace

Status writeEcs(const Activity& activity, const Selection& selection, const EcsOptions& options, Output& output) {
  EcsWriter writer(activity, options, output);
  for (const PlacedEvent& event : eventsOf(activity, selection)) {
    if (Status written = writer.write(event); !written.isOk()) return written;
  }
  return {};
}

std::string LogLines::at(LogNumber log, std::uint64_t position) {
  constexpr std::size_t kWindow = 256 * 1024;
  if (m_log != log) open(log);
  if (m_file == nullptr || position == 0) return {};
  const std::uint64_t start = position - 1;
  if (start < m_windowStart || start + kLongestOriginal > m_windowStart + m_window.size()) {
    m_windowStart = start;
    m_window.resize(kWindow);
    const auto count = m_file->readAt(start, m_window);
    m_window.resize(count.isOk() ? count.value() : 0);
  }
  std::string_view line =
      std::string_view(m_window).substr(static_cast<std::size_t>(start - m_windowStart), kLongestOriginal);
  line = line.substr(0, line.find('\n'));
  if (line.ends_with('\r')) line.remove_suffix(1);
  return std::string(line);
}

void LogLines::open(LogNumber log) {
  m_log = log;
  m_file = nullptr;
  m_windowStart = 0;
  m_window.clear();
  if (m_paths[log] == "-") return;
  std::error_code error;
  auto opened =
      openForLooking(m_files, pathFromBytes(m_paths[log]), m_names[log], {std::filesystem::temp_directory_path(error)});
  if (!opened.isOk()) return;
  auto& logs = opened.value();
  const auto named =
      std::find_if(logs.begin(), logs.end(), [&](const ReadableLog& one) { return one.name == m_names[log]; });
  if (named != logs.end()) m_file = std::move(named->file);
}

}  // namespace quorvel
