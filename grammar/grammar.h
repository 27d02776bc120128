// How the log of one server is read. Every text of a log format stands in a grammar, one file each.
//
// A line is data from strangers: a client chooses names, commands and paths, and can make them look like the middle of
// another line. A grammar reads a line from its fixed front, from its end back where the format needs that, and never
// searches for a mark anywhere in it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "grammar/event.h"

namespace quorvel {

/// What is settled about a log's lines before they are read. Immutable while blocks are parsed; where a log changes
/// it on the way (a line of Grammar::settlesDialect), blocks are cut at that line and those after it get another one.
struct Dialect {
  int year = 0;             ///< of stamps without one: a month after `month` is one of the year before
  int month = 12;           ///< 1 to 12
  bool isDayFirst = false;  ///< of dates like 6/14/2016
  std::string date;         ///< of stamps without one, as the log wrote it; may be empty
  std::vector<int> fields;  ///< of a field list, numbers of the grammar's own
  int variant = 0;          ///< the grammar's own
  friend bool operator==(const Dialect&, const Dialect&) = default;
};

/// The first lines of a log that say anything, without their line ends, and when the file was last changed (seconds
/// since 1970, UTC; 0 unknown).
struct LogStart {
  std::span<const std::string_view> lines;
  std::int64_t fileTime = 0;
};

/// How sessions are put together.
enum class SessionRule : std::uint8_t {
  ByKey,                ///< the log has a session number
  ByUserAndAddress,     ///< ended by half an hour between one transfer's end and the next one's start
  ByProcessNeighbours,  ///< address, user and process numbers close to each other
};

/// What a format tells, for the tables and for the sentences of `check`.
struct GrammarTraits {
  SessionRule sessions = SessionRule::ByKey;
  int neighbours = 2;       ///< how far the processes of one session lie apart at most
  bool tellsLogons = true;  ///< else outcomes of sessions are null
  bool tellsEnds = true;
  bool tellsSizes = true;
  bool tellsDeletes = true;
  bool isUtc = false;
  bool isMixed = false;      ///< lines of several servers: Event::server tells whose traits count for a line
  std::string_view missing;  ///< one sentence on what this log cannot tell; empty: it tells all
};

class Grammar {
 public:
  virtual ~Grammar() = default;
  /// As it stands in the tables: "serv-u-classic", "vsftpd".
  [[nodiscard]] virtual std::string_view name() const = 0;
  /// For people: "Serv-U, classic".
  [[nodiscard]] virtual std::string_view title() const = 0;
  [[nodiscard]] virtual GrammarTraits traits() const = 0;

  /// How many of the lines this grammar reads as its own; settles the dialect when it reads any. Where
  /// nothing else says it, those that parse() knows, in the dialect as it is.
  [[nodiscard]] virtual int recognise(const LogStart& start, Dialect& dialect) const;
  /// Whether lines of this format may change the dialect on the way; they begin with '#'.
  [[nodiscard]] virtual bool hasDirectives() const { return false; }
  /// Takes a line that begins with '#'.
  virtual void takeDirective(std::string_view line, Dialect& dialect) const { (void)line, (void)dialect; }

  /// Reads one line, without its line end, into an event that is as constructed. Pure: several threads at once, the
  /// same answer always, in time linear in the line. position and length are the caller's.
  virtual void parse(std::string_view line, const Dialect& dialect, Event& event) const = 0;
};

/// Every grammar there is. The order stands in Event::server.
[[nodiscard]] std::span<const Grammar* const> grammars();

/// The grammar that reads most of the lines, and its dialect; null where none reads any.
struct Recognised {
  const Grammar* grammar = nullptr;
  Dialect dialect;
};
[[nodiscard]] Recognised recogniseLog(const LogStart& start);

}  // namespace quorvel
