// What a log tells: tables of sessions, log-ons and file actions. A value: copies share their rows and cost next to
// nothing, and do not change while the log is read on.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "activity/rows.h"
#include "activity/texts.h"
#include "grammar/event.h"
#include "grammar/grammar.h"

namespace quorvel {

/// Number of a session, log-on or action in its table, from 0.
using RowNumber = std::uint32_t;
/// Index of a log in Activity::logs.
using LogNumber = std::uint16_t;

enum class SessionEnd : std::uint8_t {
  Open,
  Closed,
  ServerStart
};

/// Why a transfer did not finish.
enum class FailureCause : std::uint8_t {
  None,
  Reply,
  Closed,
  ServerStart,
  Aborted
};

/// One session. Positions are those of the first byte of a line in its log, from 1.
struct SessionRow {
  std::uint64_t position = 0;
  std::uint64_t lastPosition = 0;
  std::int64_t downloadBytes = 0;  ///< of files finished; -1 where there are some, and the log tells no size
  std::int64_t uploadBytes = 0;    ///< the same
  LogTime first = kNoTime;         ///< of its first line; not a column of the tables
  LogTime connected = kNoTime;
  LogTime loggedOn = kNoTime;
  LogTime ended = kNoTime;
  TextId key = kNoText;
  TextId user = kNoText;
  TextId address = kNoText;
  std::uint32_t lines = 0;
  std::uint32_t downloads = 0;
  std::uint32_t uploads = 0;
  std::uint32_t failedTransfers = 0;
  std::uint32_t deletes = 0;
  std::uint32_t renames = 0;
  std::uint32_t failedLogons = 0;
  LogNumber log = 0;      ///< of its first line
  LogNumber lastLog = 0;  ///< of its last line; differs only within a set of files
  std::uint8_t server = 0;
  LogonResult outcome = LogonResult::NoLogon;
  SessionEnd end = SessionEnd::Open;
  bool isInferred = false;

  /// From the first line to the last, in seconds; -1 where the times are not known. Never negative otherwise.
  [[nodiscard]] std::int64_t seconds() const {
    if (first == kNoTime || ended == kNoTime) return -1;
    return ended > first ? std::int64_t{ended} - first : 0;
  }
};
static_assert(sizeof(SessionRow) <= 104, "a million sessions are a hundred megabytes");

/// One attempt to log on.
struct LogonRow {
  std::uint64_t position = 0;
  LogTime time = kNoTime;
  RowNumber session = 0;
  TextId user = kNoText;
  TextId address = kNoText;
  ReplyCode reply = 0;
  LogNumber log = 0;
  LogonResult result = LogonResult::LoggedOn;  ///< LoggedOn: outcome ok; anything else: failed, and why

  [[nodiscard]] bool isOk() const { return result == LogonResult::LoggedOn; }
};
static_assert(sizeof(LogonRow) <= 32);

/// One thing done with a file or folder.
struct ActionRow {
  std::uint64_t position = 0;
  std::int64_t bytes = -1;  ///< -1: not told
  LogTime time = kNoTime;
  std::int32_t seconds = -1;  ///< -1: not told
  RowNumber session = 0;
  TextId user = kNoText;
  TextId address = kNoText;
  TextId path = kNoText;
  TextId toPath = kNoText;
  TextId folder = kNoText;
  ReplyCode reply = 0;
  LogNumber log = 0;
  FileAction action = FileAction::Download;
  Outcome outcome = Outcome::Unknown;
  FailureCause cause = FailureCause::None;

  [[nodiscard]] bool isTransfer() const { return action <= FileAction::Upload; }
};
static_assert(sizeof(ActionRow) <= 64);

/// Lines set aside that have one shape: digits and quoted texts replaced.
struct SetAsideShape {
  std::string shape;  ///< empty: all shapes after the first thousand
  std::string example;
  std::uint64_t lines = 0;
  std::uint64_t bytes = 0;
  std::uint64_t position = 0;  ///< of the first
};

enum class TextEncoding : std::uint8_t {
  Utf8,
  Windows1252
};

/// What became of every byte of a log: understood, set aside, foreign or repeated.
struct Ledger {
  struct Share {
    std::uint64_t lines = 0;
    std::uint64_t bytes = 0;
  };
  Share understood;
  Share setAside;
  Share foreign;
  Share repeated;
  LogTime first = kNoTime;
  LogTime last = kNoTime;
  std::uint64_t clockJumps = 0;       ///< how often the clock went back
  std::vector<SetAsideShape> shapes;  ///< a thousand at most, and one for all others

  [[nodiscard]] std::uint64_t bytes() const {
    return understood.bytes + setAside.bytes + foreign.bytes + repeated.bytes;
  }
  [[nodiscard]] std::uint64_t lines() const {
    return understood.lines + setAside.lines + foreign.lines + repeated.lines;
  }
};

/// One log, or one file of a set.
struct LogInfo {
  std::string name;  ///< as given; UTF-8
  const Grammar* grammar = nullptr;
  TextEncoding encoding = TextEncoding::Utf8;
  bool isComplete = false;     ///< read to its end
  std::uint32_t sessions = 0;  ///< that began in it
  Ledger ledger;
  std::vector<std::string> notes;  ///< whole sentences: damage, gaps, what was truncated away
};

/// The tables. Texts are bytes as the log holds them; what is shown or written goes through utf8Of().
struct Activity {
  std::vector<LogInfo> logs;
  Rows<SessionRow> sessions;
  Rows<LogonRow> logons;
  Rows<ActionRow> actions;
  Texts texts;

  [[nodiscard]] std::string_view text(TextId id) const { return texts[id]; }
};

/// "closed", "server_start", "open".
[[nodiscard]] std::string_view sessionEndName(SessionEnd end);
/// "reply", "closed", "server_start", "aborted"; empty for None.
[[nodiscard]] std::string_view failureCauseName(FailureCause cause);
/// A text of a log as valid UTF-8: as it stands, or turned from Windows-1252. Bytes that are no text become U+FFFD.
[[nodiscard]] std::string utf8Of(std::string_view text, TextEncoding encoding);

}  // namespace quorvel
