// Tables made by hand, as if a log had been read, and tables as text.
#pragma once

#include <string>
#include <string_view>

#include "activity/activity.h"
#include "report/cell_text.h"
#include "report/table.h"

namespace quorvel::test {

/// Sessions, log-ons and actions of one log. Times are seconds behind kStart.
class ActivityMaker {
 public:
  static constexpr LogTime kStart = 1'118'044'800;  ///< Monday 2005-06-06T08:00:00

  explicit ActivityMaker(TextEncoding encoding = TextEncoding::Utf8) {
    LogInfo& log = m_activity.logs.emplace_back();
    log.name = "a.log";
    log.encoding = encoding;
    log.isComplete = true;
  }

  /// A session from one time to another; what follows belongs to it.
  ActivityMaker& session(std::string_view user, std::string_view address, LogTime from = 0, LogTime to = 60) {
    SessionRow row;
    row.user = m_texts.add(user);
    row.address = m_texts.add(address);
    row.first = row.connected = kStart + from;
    row.ended = kStart + to;
    row.position = m_position;
    row.outcome = LogonResult::LoggedOn;
    row.end = SessionEnd::Closed;
    m_activity.sessions.append(row);
    return *this;
  }
  /// An attempt in the last session, by its user and address.
  ActivityMaker& logon(LogTime at, bool isOk, std::string_view user = {}) {
    const SessionRow& session = lastSession();
    LogonRow row;
    row.session = lastNumber();
    row.time = kStart + at;
    row.user = user.empty() ? session.user : m_texts.add(user);
    row.address = session.address;
    row.result = isOk ? LogonResult::LoggedOn : LogonResult::BadPassword;
    row.reply = isOk ? 230 : 530;
    row.position = m_position++;
    m_activity.logons.append(row);
    return *this;
  }
  /// What the last session's user did.
  ActivityMaker& action(LogTime at, FileAction action, std::string_view path, std::int64_t bytes = -1,
                        Outcome outcome = Outcome::Ok, std::string_view toPath = {}, std::string_view folder = {}) {
    const SessionRow& session = lastSession();
    ActionRow row;
    row.session = lastNumber();
    row.time = kStart + at;
    row.user = session.user;
    row.address = session.address;
    row.action = action;
    row.path = m_texts.add(path);
    row.toPath = m_texts.add(toPath);
    row.folder = m_texts.add(folder);
    row.bytes = bytes;
    row.outcome = outcome;
    if (outcome == Outcome::Failed) row.cause = FailureCause::Reply;
    row.position = m_position++;
    m_activity.actions.append(row);
    return *this;
  }
  /// The last session, to be made something else.
  [[nodiscard]] SessionRow& lastRow() { return m_activity.sessions.edit(lastNumber()); }
  [[nodiscard]] ActionRow& lastAction() { return m_activity.actions.edit(m_activity.actions.size() - 1); }
  [[nodiscard]] LogInfo& log() { return m_activity.logs.back(); }
  [[nodiscard]] TextId text(std::string_view text) { return m_texts.add(text); }

  [[nodiscard]] Activity activity() {
    m_activity.texts = m_texts.snapshot();
    return m_activity;
  }

 private:
  [[nodiscard]] RowNumber lastNumber() const { return static_cast<RowNumber>(m_activity.sessions.size() - 1); }
  [[nodiscard]] const SessionRow& lastSession() const { return m_activity.sessions[lastNumber()]; }

  TextPool m_texts;
  Activity m_activity;
  std::uint64_t m_position = 1;
};

/// Chosen columns of a table, values as in files, "-" for null, rows on lines of their own.
inline std::string tableText(const Table& table, const std::vector<std::string_view>& names) {
  std::string text;
  for (std::size_t row = 0; row < table.rowCount(); ++row) {
    std::string line;
    for (const std::string_view name : names) {
      for (std::size_t column = 0; column < table.columns().size(); ++column) {
        if (table.columns()[column].name != name) continue;
        std::string value;
        appendPlain(value, table.cell(row, column));
        line.append(line.empty() ? "" : " ").append(value.empty() ? "-" : value);
      }
    }
    text += line + "\n";
  }
  return text;
}

}  // namespace quorvel::test
