// What the arguments of a named command ask for.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "report/alerts.h"
#include "report/logins.h"
#include "report/scope.h"
#include "report/thresholds.h"
#include "report/traffic.h"

namespace quorvel {

enum class CommandName : std::uint8_t {
  Overview,
  Sessions,
  Logins,
  Files,
  Transfers,
  Traffic,
  Check,
  Export,
  Digest
};

enum class Format : std::uint8_t {
  Text,
  Csv,
  JsonLines,
  Html,
  Sqlite,
  Ecs
};

struct Request {
  CommandName command = CommandName::Overview;
  std::vector<std::string> logs;  ///< as given; "-" is standard input
  bool isSet = false;             ///< the logs are files of one log
  bool withSiblings = false;      ///< so are those beside each that rotation made of it
  bool isFollowing = false;       ///< what is written to the log later is answered too
  std::vector<ScopeWord> words;
  std::string from;  ///< as given, readable by parseWhen(); empty: none
  std::string to;
  std::string timeZone;  ///< a name; empty: the machine's
  Format format = Format::Text;
  std::string output;  ///< as given; empty: standard output
  std::string sort;    ///< a column's name; empty: as the table comes
  bool isReversed = false;
  std::optional<std::size_t> limit;
  std::vector<std::string> columns;  ///< names; empty: the usual ones
  std::vector<std::string> by;
  bool isRaw = false;
  bool isAll = false;
  Thresholds thresholds;
  std::vector<AlertRule> alerts;
  std::optional<AlertRule> setAside;  ///< of check: only the exit status tells that it holds
  std::string state;                  ///< file that remembers what was told; empty: none

  /// Rows are written as they come, by this run or by those after it.
  [[nodiscard]] bool isContinued() const { return isFollowing || (!state.empty() && command != CommandName::Digest); }
};

/// What else arguments can come to.
struct HelpText {
  std::string text;
};
struct WrongArguments {
  std::string sentence;
};

/// arguments: those behind the program's name; the first one is a command's.
[[nodiscard]] std::variant<Request, HelpText, WrongArguments> parseRequest(std::span<const std::string> arguments);

}  // namespace quorvel
