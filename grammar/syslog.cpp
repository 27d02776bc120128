#include "grammar/syslog.h"

#include <array>
#include <chrono>

#include "grammar/all_grammars.h"
#include "grammar/civil_time.h"
#include "grammar/openssh.h"
#include "grammar/proftpd.h"
#include "grammar/pure_ftpd.h"
#include "grammar/vsftpd.h"

namespace quorvel {
namespace {

/// `Nov 22 01:10:00 `, whose year is that of the file's date, or the one before where the month had not come yet.
std::optional<LogTime> takeYearlessDate(LineFront& line, const Dialect& dialect) {
  const std::string_view text = line.rest();
  if (text.size() < 16 || text[3] != ' ' || text[6] != ' ' || text[15] != ' ') return std::nullopt;
  const int month = monthNumber(text.substr(0, 3));
  const auto day = wholeNumber(text.substr(text[4] == ' ' ? 5 : 4, text[4] == ' ' ? 1 : 2));
  LineFront rest(text.substr(7));
  const auto clock = takeClock(rest);
  if (month == 0 || !day || !clock) return std::nullopt;
  const int year = month > dialect.month ? dialect.year - 1 : dialect.year;
  const LogTime midnight = civilTime(year, month, static_cast<int>(*day), 0, 0, 0);
  if (midnight == kNoTime && dialect.year != 0) return std::nullopt;
  line.skip(16);
  return midnight == kNoTime ? kNoTime : midnight + static_cast<LogTime>(*clock);
}

std::optional<LogTime> takeDate(LineFront& line, const Dialect& dialect) {
  return !line.isEmpty() && isDigit(line.rest().front()) ? takeIsoDate(line) : takeYearlessDate(line, dialect);
}

/// RFC 5424 behind its date: `host program process message-id [data] message`; nothing is "-".
SyslogLine readStructured(LineFront line, LogTime time) {
  (void)line.takeWord();
  const std::string_view program = line.takeWord();
  const std::string_view process = line.takeWord();
  (void)line.takeWord();
  if (line.take("[")) {
    if (!line.takeUntil("] ")) return {};
  } else if (!line.take("- ")) {
    return {};
  }
  (void)line.take("\xEF\xBB\xBF");
  return {time, program, wholeNumber(process) ? process : std::string_view{}, line.rest()};
}

enum class Program {
  None,
  Vsftpd,
  Proftpd,
  PureFtpd,
  OpenSsh
};

Program programOf(std::string_view name) {
  if (name == "vsftpd") return Program::Vsftpd;
  if (name == "proftpd") return Program::Proftpd;
  if (name == "pure-ftpd") return Program::PureFtpd;
  if (name == "sshd" || name == "sshd-session" || name == "internal-sftp" || name == "sftp-server")
    return Program::OpenSsh;
  return Program::None;
}

std::uint8_t indexOf(const Grammar& grammar) {
  const auto all = grammars();
  std::uint8_t index = 0;
  while (index < all.size() && all[index] != &grammar)
    ++index;
  return index;
}

/// What journalctl writes between lines of two boots, and syslogd for a line that came again.
bool isRemark(std::string_view line) {
  return (line.starts_with("-- ") && line.ends_with(" --")) || line.starts_with("-- Logs begin at ");
}

class Syslog final : public Grammar {
 public:
  std::string_view name() const override { return "syslog"; }
  std::string_view title() const override { return "syslog"; }
  GrammarTraits traits() const override {
    return {.isMixed = true,
            .missing =
                "A syslog holds what each server sends to it, and its stamps often have no year, which is taken "
                "from the file's date."};
  }

  int recognise(const LogStart& start, Dialect& dialect) const override {
    const std::chrono::year_month_day date{
        std::chrono::floor<std::chrono::days>(std::chrono::sys_seconds{std::chrono::seconds{start.fileTime}})};
    dialect.year = start.fileTime > 0 ? int{date.year()} : 0;
    dialect.month = start.fileTime > 0 ? static_cast<int>(unsigned{date.month()}) : 12;
    int lines = 0;
    for (const std::string_view line : start.lines)
      if (isRemark(line) || !readSyslogLine(line, dialect).program.empty()) ++lines;
    return lines;
  }

  void parse(std::string_view line, const Dialect& dialect, Event& event) const override {
    const SyslogLine parts = readSyslogLine(line, dialect);
    if (parts.program.empty()) {
      if (isRemark(line)) event.kind = EventKind::Foreign;
      return;
    }
    static const std::array<std::uint8_t, 4> servers = {indexOf(vsftpd()), indexOf(proftpd()), indexOf(pureFtpd()),
                                                        indexOf(openSsh())};
    const Program program = programOf(parts.program);
    event.time = parts.time;
    event.key = parts.process;
    event.text = parts.message;
    // What the server asked of the system's log-on library: it tells of the outcome itself.
    if (program != Program::None && (parts.message.starts_with("pam_") || parts.message.starts_with("PAM "))) {
      event.kind = EventKind::Known;
      event.key = {};
      return;
    }
    switch (program) {
      case Program::None:
        event.kind = EventKind::Foreign;
        event.key = {};
        return;
      case Program::Vsftpd:
        event.server = servers[0];
        return readVsftpdMessage(parts.message, event);
      case Program::Proftpd:
        event.server = servers[1];
        return readProftpdMessage(parts.message, event);
      case Program::PureFtpd:
        event.server = servers[2];
        return readPureFtpdMessage(parts.message, event);
      case Program::OpenSsh:
        event.server = servers[3];
        return readOpenSshMessage(parts.message, event);
    }
  }
};

}  // namespace

SyslogLine readSyslogLine(std::string_view line, const Dialect& dialect) {
  LineFront front(line);
  if (front.take("<") && (front.takeDigits().empty() || !front.take(">"))) return {};
  const bool isStructured = front.take("1 ");
  const auto time = takeDate(front, dialect);
  if (!time) return {};
  if (isStructured) return readStructured(front, *time);
  if (front.takeWord().empty()) return {};  // the host
  const auto tag = front.takeUntil(":");
  if (!tag || tag->empty() || tag->size() > 255 || tag->find(' ') != std::string_view::npos) return {};
  LineFront program(*tag);
  SyslogLine parts{*time, *tag, {}, {}};
  if (const auto name = program.takeUntil("[")) {
    parts.program = *name;
    parts.process = program.takeDigits();
    if (!program.take("]") || !program.isEmpty()) parts.process = {};
  }
  (void)front.take(" ");
  parts.message = front.rest();
  return parts;
}

const Grammar& syslog() {
  static const Syslog grammar;
  return grammar;
}

}  // namespace quorvel
